#pragma once

#include <optional>

#include <QDateTime>
#include <QJsonObject>

#include "OrvHost/OrvHostExport.h"
#include "OrvHost/update/CheckOutcome.h"

namespace OrvHost {

/// The findings of the last check or update that reached the service, kept in "last-check.json" below the
/// root, so that a program which looks often need not ask often. A plain value.
struct ORVHOST_EXPORT LastCheck
{
    QDateTime time; ///< UTC
    int exitStatus = 1;
    QJsonObject document; ///< of `orv-library check`

    /// None when there was no check, or the file is not understood.
    static std::optional<LastCheck> load(const fileString& root);
    /// Keeps what was found now; does nothing when the service was not reached.
    /// @throws std::runtime_error when the file cannot be written; it is then as it was
    static void save(const fileString& root, const CheckOutcome& found);
};

} // namespace OrvHost
