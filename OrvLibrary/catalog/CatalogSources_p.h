#pragma once

#include <string>
#include <vector>

#include "OrvLibrary/CatalogUpdateData.h"
#include "OrvLibrary/host/Application.h"
#include "OrvLibrary/host/Curl.h"

/// Finds where catalogs come from and where they go. All functions run on the thread of the update.
namespace LibraryCatalogUpdate {

/// The host's application object.
/// @throws NullPointerError with the name "gApp" if there is none
Application& hostApplication();

/// Called while an exception is handled. Throws it again if it is the error for a missing application object,
/// because that error ends the run.
void rethrowMissingApplication();

/// The reason of the exception being handled.
/// @throws NullPointerError as `rethrowMissingApplication` does
std::string reasonOfException();

/// The folder of a category's installed catalogs, with its separator at the end. Empty for an unknown
/// category.
fileString getDirectoryPathFromCategory(Library::LibraryCategory category);

/// The folder for a category's downloads, without a separator at the end. It may be missing. Nothing in it is
/// needed by the next run.
/// @throws NullPointerError if there is no application object
fileString getTempDirectoryPathFromCategory(Library::LibraryCategory category);

/// The folder for a file with this name: `folder` or, for a ".zip" archive, the folder of the referenced
/// files. With a separator at the end.
fileString catalogFolder(const fileString& name, const fileString& folder);

/// Whether a file of the category may be at this path. False if the path leaves its folder again, as when the
/// content index lists "../other.orvlib".
bool isInstalledPath(const fileString& file, Library::LibraryCategory category);

/// The address of a file at the web service. Empty if the service cannot be found; each such call writes to
/// the error log.
std::string sourceUrl(const fileString& file, Library::LibraryCategory category, const std::string& product,
                      const std::string& version);

/// Makes the conditional request for a catalog: sets `url` and appends the header line to `headers`.
void generate_url_and_headers(std::string& url, std::vector<std::string>& headers, const fileString& file,
                              const CatalogUpdateData& record, const std::string& product,
                              const std::string& version);

/// The same as a request for the download service. Its address is empty if the service cannot be found.
Curl::HeaderRequest requestFor(const fileString& file, const CatalogUpdateData& record,
                               const std::string& product, const std::string& version);

} // namespace LibraryCatalogUpdate
