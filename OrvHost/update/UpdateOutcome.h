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
#include "OrvHost/update/ServiceReport.h"
#include "OrvLibrary/CatalogUpdateData.h"

namespace OrvHost {

/// How an update ended, put together from what the library reported, what the service was asked and answered,
/// and what was put in place. A plain value.
struct ORVHOST_EXPORT UpdateOutcome
{
    enum class Kind
    {
        Updated,    ///< something new was put in place, and nothing failed
        Current,    ///< everything was checked, and nothing was new
        Incomplete, ///< the run ended well, but for what stands in `failed`
        Failed,     ///< there was no service, no content index, or nothing could be checked
        Cancelled
    };

    /// Something that could not be checked, fetched or put in place.
    struct Failure
    {
        std::optional<std::string>
            catalog; ///< file name of the installed catalog; none for the content index
        std::optional<std::int64_t> status; ///< HTTP status; none when there was no answer
        std::string reason;                 ///< for people
    };

    Kind kind = Kind::Cancelled;
    std::optional<std::int32_t> result;      ///< of the library; none after a cancel
    std::optional<std::int32_t> messageCode; ///< of the library; none when it has nothing to say
    std::set<std::string> updatedCatalogs;   ///< names without extension, UTF-8
    std::vector<fileString> swappedIn;       ///< destinations
    std::vector<Failure> failed;
    std::size_t newItems = 0;     ///< in all catalogs that were put in place
    std::size_t changedItems = 0; ///< likewise
    std::size_t goneItems = 0;    ///< likewise
    /// Why the run failed as a whole, in one sentence; empty otherwise.
    std::string error;
    /// Left-overs that could not be removed after the run, for people.
    std::vector<std::string> notes;
    ServiceReport service;
    QDateTime start; ///< UTC
    QDateTime end;   ///< UTC

    /// @param closing what the closing invocation brought; none after a cancel
    static UpdateOutcome of(const ServiceReport& service, const CatalogSwapper& swapper,
                            const std::optional<LibraryCatalogUpdate::UpdateData>& closing);

    bool isGood() const { return kind == Kind::Updated || kind == Kind::Current; }
    /// "updated", "current", "incomplete", "failed", "cancelled".
    const char* name() const;
    /// The failures in one line, such as "Doors.orvlib: HTTP 503; Roofs.orvlib: no answer"; the last ones are
    /// counted where there are many.
    std::string failedText() const;
    /// Why a catalog could not be brought up to date; empty when it could.
    std::string reasonOf(const CatalogReport& catalog) const;
};

/// The file name of the installed catalog that the service is asked for under another name: bonus and
/// manufacturer catalogs are asked for as packed archives.
ORVHOST_EXPORT std::string installedName(const std::string& asked);

} // namespace OrvHost
