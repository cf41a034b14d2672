#pragma once

#include <optional>

#include <QDateTime>
#include <QJsonObject>

#include "OrvHost/OrvHostExport.h"
#include "OrvHost/update/CheckOutcome.h"

namespace OrvHost {

/// The result of the last check or update that reached the service, stored in "last-check.json" below the
/// root. A program that shows it often thus need not ask the service each time. A plain value.
struct ORVHOST_EXPORT LastCheck
{
    QDateTime time; ///< UTC
    int exitStatus = 1;
    QJsonObject document; ///< the output of `orv-library check`

    /// Empty if there was no check, or if the file is not valid.
    static std::optional<LastCheck> load(const fileString& root);
    /// Stores a result. Does nothing if the service was not reached.
    /// @throws std::runtime_error if the file cannot be written; it is then unchanged
    static void save(const fileString& root, const CheckOutcome& found);
};

} // namespace OrvHost
