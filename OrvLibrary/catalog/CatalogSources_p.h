#pragma once

#include <string>
#include <vector>

#include "OrvLibrary/CatalogUpdateData.h"
#include "OrvLibrary/host/Application.h"
#include "OrvLibrary/host/Curl.h"

/// Where the catalogs of a category come from and go to. All run on the thread of the update.
namespace LibraryCatalogUpdate {

/// The host's application object.
/// @throws NullPointerError named "gApp" when there is none
Application& hostApplication();

/// The reason of the exception that is being handled. The error of a missing application object is thrown
/// again instead, because it ends a run.
std::string reasonOfException();

/// Folder of a category's installed catalogs, with its final separator; empty for no category.
fileString getDirectoryPathFromCategory(Library::LibraryCategory category);

/// Folder that a category's downloads are put into first, without a final separator. It need not exist, and
/// holds nothing that is worth keeping between runs.
/// @throws NullPointerError when there is no application object
fileString getTempDirectoryPathFromCategory(Library::LibraryCategory category);

/// Folder in which a file of that name is kept: `folder`, or for a ".zip" archive the folder of the
/// referenced files. With its final separator.
fileString catalogFolder(const fileString& name, const fileString& folder);

/// Whether a file of the category may lie at that path. False for a path that starts with the file's folder
/// and then leaves it, as when the content index names "../other.orvlib".
bool isInstalledPath(const fileString& file, Library::LibraryCategory category);

/// Query address of a file at the web service. Empty when the service cannot be found, which is written to
/// the error log at every call.
std::string sourceUrl(const fileString& file, Library::LibraryCategory category, const std::string& product,
                      const std::string& version);

/// Builds the conditional request for a catalog: `url` is replaced, the header line is appended to `headers`.
void generate_url_and_headers(std::string& url, std::vector<std::string>& headers, const fileString& file,
                              const CatalogUpdateData& record, const std::string& product,
                              const std::string& version);

/// The same as a request of the download service. Its address is empty when the service cannot be found.
Curl::HeaderRequest requestFor(const fileString& file, const CatalogUpdateData& record,
                               const std::string& product, const std::string& version);

} // namespace LibraryCatalogUpdate
