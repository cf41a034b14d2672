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

/// The result of a check: the catalogs that an update would fetch, determined from the records of a check or
/// an update and from the answers of the web service. A plain value.
struct ORVHOST_EXPORT CheckOutcome
{
    enum class Kind
    {
        Current, ///< everything was checked; nothing is new
        Waiting, ///< everything was checked; there are updates
        Failed   ///< no service, no content index, or a catalog could not be checked
    };

    enum class State
    {
        Current,
        New,     ///< the service has another version
        Missing, ///< the service has it; it is not installed
        Gone,    ///< the service does not have it
        Unknown, ///< the service gave no usable answer
        Held     ///< updates do not replace it, even if there is a newer version
    };

    /// The result of a check for one catalog.
    struct Catalog
    {
        CatalogPlace place;
        State state = State::Unknown;
        std::int64_t status = 0;              ///< HTTP status; 0 if there was no answer
        std::int64_t milliseconds = 0;        ///< time for its requests
        std::optional<std::int64_t> bytes;    ///< size of the download; empty if unknown
        std::optional<std::string> installed; ///< version; empty if there is no file
        std::optional<std::string> offered;   ///< version; empty if unknown
        std::string why;                      ///< explanation for people

        /// Whether an update would fetch it.
        bool waits() const { return state == State::New || state == State::Missing; }
    };

    Kind kind = Kind::Failed;
    std::vector<Catalog> catalogs; ///< ordered by name
    std::int64_t bytes = 0;        ///< size of all downloads
    std::int64_t free = 0;         ///< free bytes on the file system of the root
    /// Why the check failed as a whole, in one sentence; otherwise empty.
    std::string error;
    /// Whether the service answered at all.
    bool isServiceReached = false;

    /// @param isHeld tells which places updates do not replace
    static CheckOutcome of(const LibraryCatalogUpdate::CatalogMap& records, const ServiceReport& service,
                           const std::function<bool(const CatalogPlace&)>& isHeld, const fileString& root);

    /// 0 if everything is current, 3 if there are updates, 1 if the check failed.
    int exitStatus() const;
    /// "current", "waiting" or "failed".
    const char* name() const;
    /// The output of `orv-library check`, with "error" if the check failed as a whole.
    QJsonObject document() const;
    /// Why the check is incomplete, in one line; empty if it is complete.
    std::string complaint() const;

    /// "current", "new", "missing", "gone", "unknown" or "held".
    static const char* stateName(State state);
};

} // namespace OrvHost
