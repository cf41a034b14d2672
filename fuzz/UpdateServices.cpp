#include "fuzz/UpdateServices.h"

#include <cstdlib>
#include <fstream>
#include <stdexcept>

#include "OrvLibrary/LibraryCatalogUpdater.h"
#include "OrvLibrary/catalog/CatalogAnswer_p.h"
#include "fuzz/ArchiveScript.h"
#include "fuzz/FuzzSandbox.h"

namespace fuzz {

namespace {

const char kRequestEnd[] = "&product=Orv&version=7";
const char kIndexName[] = "Orv_Core_Content_Index.txt";

/// The tag in the only header line of a request.
std::string requestedTag(const std::vector<std::string>& headerLines)
{
    const std::string start = "If-None-Match: \"";
    require(headerLines.size() == 1 && headerLines[0].rfind(start, 0) == 0 && headerLines[0].back() == '"' &&
                headerLines[0].size() > start.size(),
            "a request names the tag of the installed copy");
    return headerLines[0].substr(start.size(), headerLines[0].size() - start.size() - 1);
}

} // namespace

void CheckingService::note()
{
    ++requests;
    atRequest();
}

std::string CheckingService::nameIn(const std::string& url)
{
    const std::string start = mEndpoint + "&library=";
    const std::size_t end = url.size() - std::min(url.size(), sizeof kRequestEnd - 1);
    require(url.rfind(start, 0) == 0 && end >= start.size() &&
                url.compare(end, std::string::npos, kRequestEnd) == 0,
            "an address is made of endpoint, name, product and version");
    return url.substr(start.size(), end - start.size());
}

std::string CheckingService::urlAfterRedirects(const std::string& url)
{
    require(url == "http://redirect.test/", "the endpoint is where the redirect leads");
    note();
    mEndpoint = endpoint();
    return mEndpoint;
}

bool CheckingService::getURLHeader(const std::string& url, const std::vector<std::string>& headerLines,
                                   std::string& headerText, std::int64_t& status)
{
    note();
    const std::string name = nameIn(url);
    if (!answerHeader(name, requestedTag(headerLines), headerText, status))
        return false;
    LibraryCatalogUpdate::CatalogUpdateData record;
    LibraryCatalogUpdate::readAnswer(headerText, status, record);
    tags.insert(record.serverETag);
    return true;
}

bool CheckingService::browseURL(const std::string& url, const std::vector<std::string>& headerLines,
                                std::string& body, bool followRedirects, int timeoutSeconds)
{
    note();
    require(followRedirects && timeoutSeconds == 0, "pages are fetched with redirects, and no limit of ours");
    const std::string name = nameIn(url);
    if (!headerLines.empty())
        requestedTag(headerLines);
    else
        require(name == kIndexName, "only the index is fetched without a tag");
    return answerPage(name, body);
}

bool CheckingService::download_to_location(const std::string& url, const fileString& target,
                                           const std::vector<std::string>& headerLines, void* context,
                                           ProgressFunction progress, std::string& reason, int& errorNumber)
{
    note();
    requestedTag(headerLines);
    const fileString folder = target.parentPath();
    require(folder.parentPath() == Sandbox::get().file("temp") &&
                folder.stemWithExtension().toNativeString().rfind("Orv Test.downloads.", 0) == 0,
            "downloads go to the download folders");
    require(target.extension() == fileString(".download") || target.stem() == fileString(".download"),
            "a download has a name of its own");
    std::string body;
    const std::string name = nameIn(url);
    if (!transfer(name, {target, context, progress, reason, errorNumber}, body))
        return false;
    bodies.insert(body);
    deliveredNames.insert(name);
    return true;
}

bool CheckingService::writeTarget(const fileString& target, const std::string& body)
{
    const std::string& path = target.toNativeString();
    if (path.find('\0') != std::string::npos)
        return false;
    std::ofstream stream(path, std::ios::binary | std::ios::trunc);
    stream << body;
    stream.close();
    return stream.good();
}

void ScriptedService::atRequest()
{
    if (requests == mScript.cancelledRequest) {
        mIsCancelled = true;
        LibraryCatalogUpdate::LibraryCatalogUpdater::killDownload();
    }
}

bool ScriptedService::answerHeader(const std::string&, const std::string&, std::string& headerText,
                                   std::int64_t& status)
{
    const std::string answer = UpdateScript::take(mScript.headers, "304 ");
    if (answer == "-")
        return false;
    if (answer == "!")
        throw std::runtime_error("scripted");
    status = std::strtol(answer.c_str(), nullptr, 10);
    const std::size_t blank = answer.find(' ');
    headerText = "HTTP/1.1 " + std::to_string(status) + " Text\r\n";
    for (const char c : blank == std::string::npos ? "" : answer.substr(blank + 1))
        headerText += c == '|' ? "\r\n" : std::string(1, c);
    headerText += "\r\n\r\n";
    return true;
}

bool ScriptedService::transfer(const std::string&, const Transfer& transfer, std::string& body)
{
    const std::string download = UpdateScript::take(mScript.downloads, "-7");
    const std::string stall = UpdateScript::take(mScript.stalls, "1");
    constexpr unsigned long kMostCalls = 700;
    for (unsigned long calls = std::min(std::strtoul(stall.c_str(), nullptr, 10), kMostCalls); calls > 0;
         --calls) {
        if (transfer.progress(transfer.context, 0, 0, 0, 0) != 0) {
            transfer.errorNumber = kAbortedByCallback;
            transfer.reason = "aborted";
            return false;
        }
    }
    const char kind = download.empty() ? '-' : download[0];
    body = UpdateScript::bodyOf(download);
    if (kind == '!' || kind == '~')
        writeTarget(transfer.target, "a part");
    if (kind == '!')
        throw std::runtime_error("scripted");
    if (kind == '-' || kind == '~' || !writeTarget(transfer.target, body)) {
        transfer.errorNumber = download.empty() ? 0 : std::atoi(download.c_str() + 1);
        transfer.reason = "scripted";
        return false;
    }
    const auto size = static_cast<double>(body.size());
    return transfer.progress(transfer.context, size, size, 0, 0) == 0;
}

bool ScriptedService::answerPage(const std::string& name, std::string& body)
{
    if (name == kIndexName && !mHasServedIndex) {
        mHasServedIndex = true;
        body = mScript.index;
        return true;
    }
    const std::string page = UpdateScript::take(mScript.pages, "-");
    if (page == "!")
        throw std::runtime_error("scripted");
    body = UpdateScript::bodyOf(page);
    return page != "-";
}

const char CleanService::kTagStart[] = "clean ";

const std::set<std::string>& CleanService::names()
{
    static const std::set<std::string> names{"Doors.orvlib", "New.orvlib", "Tex.zip", "Bath.orvlibz",
                                             "Oak.orvlibz"};
    return names;
}

std::string CleanService::bodyOf(const std::string& name)
{
    static const std::string content(1200, '.');
    if (name.find(".orvlibz") == std::string::npos)
        return name + content;
    return archiveOf({"s any.orvlib=" + name + content, "s " + name + ".png=" + content});
}

bool CleanService::answerHeader(const std::string& name, const std::string& tag, std::string& headerText,
                                std::int64_t& status)
{
    const bool isCurrent = tag == tagOf(name);
    status = names().count(name) == 0 ? 404 : isCurrent ? 304 : 200;
    headerText = "HTTP/1.1 " + std::to_string(status) + " Text\r\n";
    if (status != 404)
        headerText += "ETag: \"" + tagOf(name) +
                      "\"\r\nContent-Length: " + std::to_string(bodyOf(name).size()) + "\r\n";
    headerText += "\r\n";
    return true;
}

bool CleanService::transfer(const std::string& name, const Transfer& transfer, std::string& body)
{
    body = bodyOf(name);
    const auto size = static_cast<double>(body.size());
    return writeTarget(transfer.target, body) && transfer.progress(transfer.context, size, size, 0, 0) == 0;
}

bool CleanService::answerPage(const std::string& name, std::string& body)
{
    body = name == kIndexName ? "Doors.orvlib\nNew.orvlib\nTex.zip\n" : "none";
    return name == kIndexName;
}

Pref MemoryPrefs::getPref(int id) const
{
    const auto found = mValues.find(id);
    return {"", found == mValues.end() ? PrefValue(false) : found->second};
}

} // namespace fuzz
