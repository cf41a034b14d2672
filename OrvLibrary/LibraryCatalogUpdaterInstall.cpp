// How it works: `updateCatalogs` announces all downloads, so that they may be fetched ahead. Then
// `updateCatalog` downloads and installs one catalog after the other. A packed bonus or manufacturer catalog
// is unpacked. The host object gets the path of each new file and puts it into place.
#include "OrvLibrary/LibraryCatalogUpdater.h"

#include <algorithm>
#include <cstdint>
#include <limits>
#include <map>
#include <memory>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "OrvLibrary/IO/ErrorLog.h"
#include "OrvLibrary/IO/LibraryImport.h"
#include "OrvLibrary/catalog/CatalogDownload_p.h"
#include "OrvLibrary/catalog/CatalogEvents_p.h"
#include "OrvLibrary/catalog/CatalogSources_p.h"
#include "OrvLibrary/catalog/CatalogUpdaterState_p.h"
#include "OrvLibrary/host/Curl.h"
#include "OrvLibrary/host/FileSearch.h"
#include "OrvLibrary/host/FileUtils.h"
#include "OrvLibrary/host/PathUtils.h"
#include "OrvLibrary/host/StringTable.h"
#include "OrvLibrary/host/StringUtils.h"

namespace LibraryCatalogUpdate {

namespace {

/// Makes `FileUtils::removePath` remove read-only files, too.
constexpr int kRemoveReadOnly = 1;

/// The files in a download; a path is empty if there is no such file.
struct NewFiles
{
    fileString catalog;
    fileString referenced;
};

NewFiles unpackArchive(const fileString& archive)
{
    const auto [library, referenced] = LibraryImport::unpack(archive, false, nullptr);
    FileUtils::removePath(archive, kRemoveReadOnly);
    NewFiles files;
    if (library.first)
        files.catalog = library.second;
    if (referenced.first)
        files.referenced = referenced.second;
    return files;
}

void removeTemporaryFile(const fileString& file)
{
    if (file.pathExists())
        FileUtils::removePath(file, kRemoveReadOnly);
}

/// Where a catalog is downloaded to, in the download folder of its category.
fileString temporaryFileOf(const fileString& catalogFile, const fileString& folder)
{
    return folder / catalogFile.stem() + fileString(".download");
}

/// The downloads of a run in order, exactly as they will be made. Creates their folders.
std::vector<Curl::DownloadRequest> downloadsOf(const CatalogMap& catalogs, const std::string& product,
                                               const std::string& version)
{
    std::vector<Curl::DownloadRequest> requests;
    // Looking for the endpoint here would log its failure twice.
    if (kApiEndpoint.empty())
        return requests;
    std::map<Library::LibraryCategory, fileString> folders;
    for (const auto& [catalogFile, record] : catalogs) {
        if (!record.needsUpdate())
            continue;
        fileString& folder = folders[record.category];
        if (folder.empty()) {
            folder = getTempDirectoryPathFromCategory(record.category);
            FileUtils::createDirectoriesWithPerm(folder, false);
        }
        const Curl::HeaderRequest request = requestFor(catalogFile, record, product, version);
        const auto size = static_cast<std::int64_t>(
            std::min<std::uint64_t>(record.contentLength, std::numeric_limits<std::int64_t>::max()));
        requests.push_back({request.url, request.headerLines, temporaryFileOf(catalogFile, folder), size});
    }
    return requests;
}

/// Announces the downloads, so that the download service may fetch them ahead. If it throws, they are made
/// one by one.
void announce(const std::vector<Curl::DownloadRequest>& requests)
try {
    Curl::get().prefetchDownloads(requests);
} catch (...) {
}

/// Drops what was fetched ahead and not used, however the loop ends.
struct EndOfAnnouncement
{
    ~EndOfAnnouncement() { announce({}); }
};

} // namespace

void LibraryCatalogUpdater::updateCatalogs()
{
    updateTotalDownloadSize();
    if (kApiEndpoint.empty())
        mMessageCode = kMessageNoEndpoint;
    // Deliberate: if all changed files are smaller than a kilobyte, this run downloads nothing.
    // Kept by: LibraryCatalogUpdaterInstall.whenAllChangesAreTinyNothingIsDownloaded
    if (kbytes_to_read == 0)
        return;
    // Deliberate: only this and a good download reset it. After a stall, the next silent call aborts at once.
    // Kept by: LibraryCatalogUpdaterInstall.afterAStallTheNextSilentCallAborts
    diff_zero_count = 0;
    total_kbytes_read = 0;
    file_kbytes_read = 0;
    if (isDownloadKilled())
        return;
    const std::string prefix = hostText(TextId::kDownloading);
    Library::ErrorLog log;
    try {
        announce(downloadsOf(mCatalogs, mProduct, mVersion));
    } catch (...) {
        noteException("Unable to list the downloads");
    }
    const EndOfAnnouncement end;
    for (auto& [catalogFile, record] : mCatalogs) {
        if (record.needsUpdate() && !updateCatalog(catalogFile, record, prefix, log))
            break;
    }
}

/// @return false to end the loop; a failed download does not end it
bool LibraryCatalogUpdater::updateCatalog(const fileString& catalogFile, CatalogUpdateData& record,
                                          const std::string& prefix, Library::ErrorLog& log)
{
    fileString temporaryFile;
    std::string reason;
    bool downloaded = false;
    try {
        temporaryFile = prepareDownload(catalogFile, record, prefix);
        downloaded = downloadCatalog(catalogFile, record, temporaryFile, reason);
    } catch (...) {
        reason = reasonOfException();
    }
    if (!downloaded) {
        noteFailedDownload(catalogFile, temporaryFile, reason, log);
        return true;
    }
    diff_zero_count = 0;
    return installCatalog(temporaryFile, record, catalogFile);
}

/// @return the path to download the catalog to
fileString LibraryCatalogUpdater::prepareDownload(const fileString& catalogFile,
                                                  const CatalogUpdateData& record, const std::string& prefix)
{
    const fileString folder = getTempDirectoryPathFromCategory(record.category);
    FileUtils::createDirectoriesWithPerm(folder, false);
    mHostObject->setText(prefix + StringUtils::toWin1252(catalogFile.stem().unicodeString()));
    total_kbytes_read = addSaturating(total_kbytes_read, file_kbytes_read);
    file_kbytes_read = 0;
    return temporaryFileOf(catalogFile, folder);
}

bool LibraryCatalogUpdater::downloadCatalog(const fileString& catalogFile, const CatalogUpdateData& record,
                                            const fileString& temporaryFile, std::string& reason)
{
    const Curl::HeaderRequest request = requestFor(catalogFile, record, mProduct, mVersion);
    if (request.url.empty()) {
        reason = "No API endpoint found.";
        return false;
    }
    CatalogDownload context;
    context.events = mHostObject.get();
    int errorNumber = 0;
    if (Curl::get().download_to_location(request.url, temporaryFile, request.headerLines, &context,
                                         download_progress_callback, reason, errorNumber))
        return true;
    if (errorNumber == Curl::kAbortedByCallback)
        mMessageCode = kMessageDownloadCancelled;
    if (isDownloadKilled())
        announce({}); // drops what was fetched ahead
    return false;
}

void LibraryCatalogUpdater::noteFailedDownload(const fileString& catalogFile, const fileString& temporaryFile,
                                               const std::string& reason, Library::ErrorLog& log)
{
    mHadError = true;
    log << "Failed To Download File:  " << catalogFile.stem() << "   Reason:  " << reason << "\n";
    removeTemporaryFile(temporaryFile);
}

/// Installs a download. An exception, such as that for a damaged archive, is a failed installation.
bool LibraryCatalogUpdater::installCatalog(const fileString& downloadedFile, CatalogUpdateData& record,
                                           const fileString& catalogFile)
{
    try {
        if (fileDownloaded(downloadedFile, record, catalogFile))
            return true;
    } catch (...) {
        rethrowMissingApplication();
        Library::ErrorLog() << "Unable to install:  " << catalogFile << "\n";
        removeTemporaryFile(downloadedFile);
    }
    mHadError = true;
    return false;
}

bool LibraryCatalogUpdater::fileDownloaded(const fileString& downloadedFile, CatalogUpdateData& record,
                                           const fileString& catalogFile)
{
    Library::ErrorLog log;
    if (FileUtils::fileSize(downloadedFile) < 1) {
        FileUtils::removePath(downloadedFile, kRemoveReadOnly);
        log << "Empty Download File:  " << downloadedFile << "\n";
        return false;
    }
    NewFiles files;
    if (record.category == Library::kBonusLibrary || record.category == Library::kManufacturerLibrary) {
        files = unpackArchive(downloadedFile);
    } else {
        const std::string extension = catalogFile.extension().toNativeString();
        const fileString renamedFile = downloadedFile.pathAndName() + fileString(extension);
        if (!renameCoreFile(downloadedFile, renamedFile, log))
            return false;
        if (extension != ".orvlib" && extension != ".zip") {
            log << "Unsupported file extension:  " << catalogFile << "\n";
            return false;
        }
        (extension == ".zip" ? files.referenced : files.catalog) = renamedFile;
    }
    if (files.catalog.pathExists())
        handOverCatalog(files.catalog, record, catalogFile, log);
    if (files.referenced.pathExists() && !installReferencedFile(files.referenced, log))
        return false;
    record.installed = true;
    return true;
}

bool LibraryCatalogUpdater::renameCoreFile(const fileString& downloadedFile, const fileString& renamedFile,
                                           Library::ErrorLog& log)
{
    if (FileUtils::isPathWriteLocked(downloadedFile))
        log << "Download destination file was locked or not writeable:  " << downloadedFile << "\n";
    else if (FileUtils::isPathWriteLocked(renamedFile))
        log << "Download final destination file was locked or not writeable:  " << renamedFile << "\n";
    else if (!FileUtils::renameFile(downloadedFile, renamedFile))
        log << "Unable to rename catalog update file:  " << downloadedFile << "\n";
    else
        return true;
    mMessageCode = kMessageInstallationFailed;
    return false;
}

/// The destination is directly in the category's folder, even if the record's key names a subfolder.
void LibraryCatalogUpdater::handOverCatalog(const fileString& newFile, const CatalogUpdateData& record,
                                            const fileString& catalogFile, Library::ErrorLog& log)
{
    const fileString destination =
        getDirectoryPathFromCategory(record.category) / catalogFile.stemWithExtension();
    // Before the call to the host, because the host may move the file at once.
    setFilePermissionIfNotThrow(log, newFile);
    mHostObject->catalogUpdated({destination, newFile});
    mCatalogInstalled = true;
    mUpdatedCatalogs.insert(StringUtils::toWin1252(newFile.stem().unicodeString()));
}

bool LibraryCatalogUpdater::installReferencedFile(const fileString& newFile, Library::ErrorLog& log)
{
    const fileString folder = PathUtils::getObject().getProprietaryLibraryReferencedFilesPath();
    const fileString installedFile = folder + newFile.stemWithExtension();
    if (!FileUtils::moveFile(newFile, installedFile, false)) {
        log << "Unable to copy referenced file:  " << newFile << "\n";
        return false;
    }
    mCatalogInstalled = true;
    setFilePermissionIfNotThrow(log, installedFile);
    mUpdatedCatalogs.insert(StringUtils::toWin1252(installedFile.stem().unicodeString()));
    FileSearch::get().resetFileSearch(folder);
    return true;
}

void LibraryCatalogUpdater::setFilePermissionIfNotThrow(Library::ErrorLog& log, const fileString& file)
try {
    FileUtils::setFilePermission(file);
} catch (const std::runtime_error&) {
    // Deliberate: the fixed text, not that of the error.
    // Kept by: LibraryCatalogUpdaterInstall.permissionsThatCannotBeSetAreLoggedWithTheFixedText
    log << "Error setting file permissions: Unknown error\n";
    mHadError = true;
}

} // namespace LibraryCatalogUpdate
