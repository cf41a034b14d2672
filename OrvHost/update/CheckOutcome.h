#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include <QDateTime>
#include <QJsonObject>

#include "OrvHost/OrvHostExport.h"
#include "OrvHost/history/CatalogPlace.h"
#include "OrvHost/update/ServiceReport.h"
#include "OrvLibrary/CatalogUpdateData.h"

namespace OrvHost {

/// The foreseen result of an update, put together from the records of a check or an update and from the
/// answers of the web service. A plain value.
struct ORVHOST_EXPORT CheckOutcome
{
    enum class Kind
    {
        Current, ///< everything was checked, and nothing is new
        Waiting, ///< everything was checked, and updates wait
        Failed   ///< there was no service or no content index, or a catalog could not be checked
    };

    enum class State
    {
        Current,
        New,     ///< the service has another version than the installed one
        Missing, ///< the service has it, and it is not installed
        Gone,    ///< the service does not have it
        Unknown, ///< the service did not tell
        Held     ///< no update replaces it, whether or not there is a newer version
    };

    /// The result of a check for one catalog.
    struct Catalog
    {
        CatalogPlace place;
        State state = State::Unknown;
        std::int64_t status = 0;              ///< HTTP status; 0 when there was no answer
        std::int64_t milliseconds = 0;        ///< that its requests took
        std::optional<std::int64_t> bytes;    ///< of what an update would fetch; none when that is not known
        std::optional<std::string> installed; ///< version; none when no file is there
        std::optional<std::string> offered;   ///< version; none when the service told none
        std::string why;                      ///< for people
    };

    Kind kind = Kind::Failed;
    std::vector<Catalog> catalogs; ///< in the order of the names
    std::int64_t bytes = 0;        ///< of everything that an update would fetch
    std::int64_t free = 0;         ///< bytes that the root's file system has left
    /// Why the check failed as a whole, in one sentence; empty otherwise.
    std::string error;
    /// Whether the service gave any answer.
    bool isServiceReached = false;

    /// @param isHeld tells which places no update replaces
    static CheckOutcome of(const LibraryCatalogUpdate::CatalogMap& records, const ServiceReport& service,
                           const std::function<bool(const CatalogPlace&)>& isHeld, const fileString& root);

    /// 0 when all is current, 3 when updates wait, 1 when it could not be told.
    int exitStatus() const;
    /// "current", "waiting" or "failed".
    const char* name() const;
    /// The document of `orv-library check`, with "error" when the check failed as a whole.
    QJsonObject document() const;
    /// Why the check could not tell everything, in one line; empty when it could.
    std::string complaint() const;

    /// "current", "new", "missing", "gone", "unknown" or "held".
    static const char* stateName(State state);
};

} // namespace OrvHost
