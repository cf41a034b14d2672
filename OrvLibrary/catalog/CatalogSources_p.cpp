#include "OrvLibrary/catalog/CatalogSources_p.h"

#include <filesystem>

#include "OrvLibrary/IO/ErrorLog.h"
#include "OrvLibrary/catalog/CatalogUpdaterState_p.h"
#include "OrvLibrary/host/NullPointerRaiser.h"
#include "OrvLibrary/host/PathUtils.h"
#include "OrvLibrary/host/StringUtils.h"
#include "OrvLibrary/host/WebUtils.h"

namespace LibraryCatalogUpdate {

namespace {

const char kApplicationPointer[] = "gApp";

/// The name of a file at the web service. Bonus and manufacturer catalogs are installed unpacked, but always
/// downloaded as packed archives.
std::string libraryValue(const fileString& file, Library::LibraryCategory category)
{
    const bool isPacked = category == Library::kBonusLibrary || category == Library::kManufacturerLibrary;
    const fileString name = isPacked ? file.stem() + fileString(".orvlibz") : file.stemWithExtension();
    return name.unicodeString().toUTF8String();
}

/// Why the last request had no answer; empty if the download service does not know.
std::string reasonOfLastAnswer()
try {
    return Curl::get().lastAnswer().reason;
} catch (const std::exception&) {
    return {};
}

void resolveApiEndpoint()
{
    if (kApiEndpoint.empty())
        kApiEndpoint = WebUtils::getUrlAfterRedirects(kContentRedirect);
    if (!kApiEndpoint.empty())
        return;
    Library::ErrorLog log;
    log << "Unable to determine api endpoint\n";
    const std::string reason = reasonOfLastAnswer();
    if (!reason.empty())
        log << "Reason:  " << reason << " (" << kContentRedirect << ")\n";
}

} // namespace

Application& hostApplication()
{
    Application* const application = gApp;
    if (!application)
        NullPointerRaiser::Throw(kApplicationPointer, __FILE__, __LINE__);
    return *application;
}

void rethrowMissingApplication()
try {
    throw;
} catch (const NullPointerError& error) {
    if (error.pointerName() == kApplicationPointer)
        throw;
} catch (...) {
    // Every other exception is the caller's to report.
}

std::string reasonOfException()
{
    rethrowMissingApplication();
    try {
        throw;
    } catch (const std::exception& error) {
        return error.what();
    } catch (...) {
        return "Unknown error";
    }
}

fileString getDirectoryPathFromCategory(Library::LibraryCategory category)
{
    const PathUtils& paths = PathUtils::getObject();
    switch (category) {
    case Library::kCoreLibrary:
        return paths.getCoreLibraryDatabasePath();
    case Library::kManufacturerLibrary:
        return paths.getManufacturerLibraryPath();
    case Library::kBonusLibrary:
        return paths.getBonusLibraryDatabasePath();
    }
    return {};
}

fileString getTempDirectoryPathFromCategory(Library::LibraryCategory category)
{
    const Application& application = hostApplication();
    const fileString tempFolder = PathUtils::getObject().getTempPath();
    const fileString kind = getDirectoryPathFromCategory(category).parentPath().stem();
    return tempFolder / (fileString(application.name() + xl8(".downloads.")) + kind);
}

fileString catalogFolder(const fileString& name, const fileString& folder)
{
    const bool isReferencedArchive = name.extension() == fileString(".zip");
    return isReferencedArchive ? PathUtils::getObject().getProprietaryLibraryReferencedFilesPath() : folder;
}

bool isInstalledPath(const fileString& file, Library::LibraryCategory category)
{
    const std::string& path = file.toNativeString();
    const std::string folder = catalogFolder(file, getDirectoryPathFromCategory(category)).toNativeString();
    if (folder.empty() || path.compare(0, folder.size(), folder) != 0)
        return true; // outside of our folders the host decides
    const std::size_t name = path.find_first_not_of('/', folder.size());
    const std::filesystem::path below(name == std::string::npos ? std::string() : path.substr(name));
    const std::filesystem::path normal = below.lexically_normal();
    return normal.empty() || *normal.begin() != "..";
}

std::string sourceUrl(const fileString& file, Library::LibraryCategory category, const std::string& product,
                      const std::string& version)
{
    const std::string library = libraryValue(file, category);
    resolveApiEndpoint();
    if (kApiEndpoint.empty())
        return {};
    // Deliberate: the values are inserted without escaping. The service does the same, and the transfer
    // encodes what HTTP cannot carry.
    // Kept by: CatalogSources.valuesAreInsertedAsTheyAre
    return kApiEndpoint + "&library=" + library + "&product=" + product + "&version=" + version;
}

void generate_url_and_headers(std::string& url, std::vector<std::string>& headers, const fileString& file,
                              const CatalogUpdateData& record, const std::string& product,
                              const std::string& version)
{
    // Deliberate: the header is sent even if the tag is empty.
    // Kept by: CatalogSources.anEmptyTagIsSentAsTwoQuotes
    headers.push_back("If-None-Match: \"" + record.localHash + "\"");
    url = sourceUrl(file, record.category, product, version);
}

Curl::HeaderRequest requestFor(const fileString& file, const CatalogUpdateData& record,
                               const std::string& product, const std::string& version)
{
    Curl::HeaderRequest request;
    generate_url_and_headers(request.url, request.headerLines, file, record, product, version);
    return request;
}

} // namespace LibraryCatalogUpdate
