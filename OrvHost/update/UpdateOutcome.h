#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include <QDateTime>

#include "OrvHost/OrvHostExport.h"
#include "OrvHost/update/CatalogSwapper.h"
#include "OrvHost/update/CheckOutcome.h"
#include "OrvHost/update/ServiceReport.h"
#include "OrvLibrary/CatalogUpdateData.h"

namespace OrvHost {

/// The result of an update, determined from the library's closing call, the service's answers and what was
/// put into place. A plain value.
struct ORVHOST_EXPORT UpdateOutcome
{
    enum class Kind
    {
        Updated,    ///< a new catalog was put into place, and nothing failed
        Current,    ///< everything was checked, and nothing is new
        Incomplete, ///< the run is complete, except for the catalogs in `failed`
        Failed,     ///< no service, no content index, or nothing could be checked
        Cancelled,
        Waiting ///< everything was checked; what is new waits, because the connection is metered
    };

    /// Something that could not be checked, downloaded or put into place.
    struct Failure
    {
        std::optional<std::string>
            catalog; ///< file name of the installed catalog; empty for the content index
        std::optional<std::int64_t> status; ///< HTTP status; empty if there was no answer
        std::string reason;                 ///< for people
    };

    /// Something new that was not fetched, because the connection is metered.
    struct Postponed
    {
        std::string catalog;               ///< file name of the installed catalog
        std::optional<std::int64_t> bytes; ///< none when the service does not tell
    };

    Kind kind = Kind::Cancelled;
    std::optional<std::int32_t> result;      ///< of the library; empty after a cancel
    std::optional<std::int32_t> messageCode; ///< of the library; empty if it has no message
    std::set<std::string> updatedCatalogs;   ///< names without extension, UTF-8
    std::vector<fileString> swappedIn;       ///< destinations
    std::vector<Failure> failed;
    std::vector<Postponed> postponed;
    std::size_t newItems = 0;     ///< in all catalogs put into place
    std::size_t changedItems = 0; ///< the same
    std::size_t goneItems = 0;    ///< the same
    /// Why the run failed as a whole, in one sentence; otherwise empty.
    std::string error;
    /// Leftovers that could not be removed after the run, for people.
    std::vector<std::string> notes;
    ServiceReport service;
    QDateTime start; ///< UTC
    QDateTime end;   ///< UTC

    /// @param closing the argument of the closing call; empty after a cancel
    static UpdateOutcome of(const ServiceReport& service, const CatalogSwapper& swapper,
                            const std::optional<LibraryCatalogUpdate::UpdateData>& closing);

    /// The same of a run that ended after its check, because the connection is metered.
    /// @param found what the check found
    static UpdateOutcome ofPostponed(const ServiceReport& service, const CatalogSwapper& swapper,
                                     const CheckOutcome& found);

    /// Whether everything was checked, and nothing failed.
    bool hasCheckedAll() const { return isGood() || kind == Kind::Waiting; }
    bool isGood() const { return kind == Kind::Updated || kind == Kind::Current; }
    /// "updated", "current", "incomplete", "failed", "cancelled", "waiting".
    const char* name() const;
    /// All failures in one line, such as "Doors.orvlib: HTTP 503; Roofs.orvlib: no answer". If there are
    /// many, the last ones are only counted.
    std::string failedText() const;
    /// Why a catalog could not be updated; empty if it could.
    std::string reasonOf(const CatalogReport& catalog) const;
};

/// The file name of the installed catalog. Bonus and manufacturer catalogs have another name in requests,
/// because they are requested as packed archives.
ORVHOST_EXPORT std::string installedName(const std::string& asked);

} // namespace OrvHost
