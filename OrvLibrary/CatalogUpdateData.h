#pragma once

#include <cstdint>
#include <map>
#include <set>
#include <string>
#include <utility>

#include "OrvLibrary/LibraryCategory.h"
#include "OrvLibrary/OrvLibraryExport.h"
#include "OrvLibrary/host/fileString.h"

/// The argument of "onCatalogUpdatedEvent": the catalog's destination in its category folder, then the path
/// of the new file, which the host puts in its place.
using FileStringPair = std::pair<fileString, fileString>;

namespace LibraryCatalogUpdate {

/// The outcomes of a run, as `UpdateData::result`.
constexpr std::int32_t kResultFailed = 0;     ///< some step of a full run failed
constexpr std::int32_t kResultCoreFailed = 1; ///< some step of a core-only run failed
constexpr std::int32_t kResultUpdated = 2;    ///< something was installed
constexpr std::int32_t kResultCurrent = 3;    ///< everything is current

/// The outcome codes of a run, as `UpdateData::messageCode`.
constexpr std::int32_t kMessageNone = 0x10369189;               ///< nothing to report
constexpr std::int32_t kMessageDownloadCancelled = 0x1036918a;  ///< a download was cancelled or stalled
constexpr std::int32_t kMessageNoEndpoint = 0x1036918b;         ///< the web service was not found
constexpr std::int32_t kMessageInstallationFailed = 0x1036918e; ///< an installation step failed

/// The facts that one run has about one catalog file. A plain value; one object belongs to one thread.
struct ORVLIBRARY_EXPORT CatalogUpdateData
{
    /// Selects the folder, the form of the web address and the way of installing.
    Library::LibraryCategory category = Library::kCoreLibrary;
    /// Kept empty.
    std::string spare;
    /// Tag of the installed copy: from the hash file, else the SHA-1 of its contents; empty for none.
    std::string localHash;
    /// The web service's tag, without its quotes.
    std::string serverETag;
    /// The downloaded copy was installed in this run.
    bool installed = false;
    /// Body of the page fetched when the header request was answered with 403 or 404.
    std::string errorText;
    /// `Content-Length` of the header answer, in bytes.
    std::uint64_t contentLength = 0;
    /// HTTP status of the header answer; 0 when there was none.
    std::int64_t responseStatus = 0;

    /// Whether the web service offers another copy than the one installed: it answered 200 with another tag.
    bool needsUpdate() const;
};

/// The records of a run, of all categories, by the file's name with its extension and without its folder.
using CatalogMap = std::map<fileString, CatalogUpdateData>;

/// The argument of "closeCatalogUpdateEvent": how a run ended. Known to Qt's meta-type system by its full
/// name once an updater was constructed. A plain value.
struct ORVLIBRARY_EXPORT UpdateData
{
    /// One of the `kResult…` values.
    std::int32_t result = kResultFailed;
    /// Names without extension, Windows-1252, of all catalogs and referenced files installed in the run.
    std::set<std::string> updatedCatalogs;
    /// One of the `kMessage…` values.
    std::int32_t messageCode = kMessageNone;
};

} // namespace LibraryCatalogUpdate
