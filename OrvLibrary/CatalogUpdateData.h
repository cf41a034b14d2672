#pragma once

#include <cstdint>
#include <map>
#include <set>
#include <string>
#include <utility>

#include "OrvLibrary/LibraryCategory.h"
#include "OrvLibrary/OrvLibraryExport.h"
#include "OrvLibrary/host/fileString.h"

/// The argument of "onCatalogUpdatedEvent": first the path of the catalog in its category folder, then the
/// path of the new file. The host moves the second to the first.
using FileStringPair = std::pair<fileString, fileString>;

namespace LibraryCatalogUpdate {

/// The results of a run in `UpdateData::result`.
constexpr std::int32_t kResultFailed = 0;     ///< a step of a full run failed
constexpr std::int32_t kResultCoreFailed = 1; ///< a step of a core-only run failed
constexpr std::int32_t kResultUpdated = 2;    ///< at least one catalog was installed
constexpr std::int32_t kResultCurrent = 3;    ///< all catalogs are current

/// The messages of a run in `UpdateData::messageCode`.
constexpr std::int32_t kMessageNone = 0x10369189;               ///< nothing to report
constexpr std::int32_t kMessageDownloadCancelled = 0x1036918a;  ///< a download was cancelled or stalled
constexpr std::int32_t kMessageNoEndpoint = 0x1036918b;         ///< the web service was not found
constexpr std::int32_t kMessageInstallationFailed = 0x1036918e; ///< an installation step failed

/// The state of one catalog in a run. A plain value; one object belongs to one thread.
struct ORVLIBRARY_EXPORT CatalogUpdateData
{
    /// Determines the folder, the form of the web address and how the catalog is installed.
    Library::LibraryCategory category = Library::kCoreLibrary;
    /// Always empty.
    std::string spare;
    /// The tag of the installed copy, from the hash file. If it is not there, the SHA-1 of the file; empty if
    /// there is no file.
    std::string localHash;
    /// The tag from the web service, without quotes.
    std::string serverETag;
    /// Whether the new copy was installed in this run.
    bool installed = false;
    /// The body of the error page, fetched if the header request was answered with 403 or 404.
    std::string errorText;
    /// `Content-Length` of the header answer, in bytes.
    std::uint64_t contentLength = 0;
    /// HTTP status of the header answer; 0 when there was none.
    std::int64_t responseStatus = 0;

    /// Whether the web service has another copy than the installed one: it answered 200 with another tag.
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
