#include "tests/catalog/ScriptedCurl.h"

#include <algorithm>

#include "tests/support/TempFolder.h"

namespace test {

namespace {

std::string libraryOf(const std::string& url)
{
    const std::string key = "&library=";
    const std::size_t start = url.find(key);
    if (start == std::string::npos)
        return {};
    const std::size_t from = start + key.size();
    return url.substr(from, url.find("&product=", from) - from);
}

std::string answer(const ScriptedFile& file, std::int64_t status)
{
    std::string lines = file.headerLines;
    if (lines.empty())
        lines = "ETag: \"" + file.tag + "\"\r\nContent-Length: " + std::to_string(file.body.size()) + "\r\n";
    return "HTTP/1.1 " + std::to_string(status) + " Text\r\n" + lines + "\r\n";
}

} // namespace

void ScriptedCurl::note(const std::string& request)
{
    requests.push_back(request);
    if (onRequest)
        onRequest(request);
}

void ScriptedCurl::prefetchHeaders(const std::vector<HeaderRequest>& announced)
{
    announcements.emplace_back(requests.size(), announced);
    if (onAnnouncement)
        onAnnouncement();
}

void ScriptedCurl::prefetchDownloads(const std::vector<DownloadRequest>& announced)
{
    downloadAnnouncements.emplace_back(requests.size(), announced);
    if (onAnnouncement)
        onAnnouncement();
}

std::vector<std::string> ScriptedCurl::asked(const std::string& kind) const
{
    std::vector<std::string> values;
    for (const std::string& request : requests) {
        if (request.rfind(kind + " ", 0) == 0)
            values.push_back(libraryOf(request));
    }
    return values;
}

bool ScriptedCurl::downloadable(const std::string& url)
{
    return url.rfind("http", 0) == 0;
}

fileString ScriptedCurl::download(const std::string&)
{
    return {};
}

bool ScriptedCurl::download_to_location(const std::string&, const fileString&, std::string& reason)
{
    reason = "not scripted";
    return false;
}

bool ScriptedCurl::download_to_location(const std::string& url, const fileString& target,
                                        const std::vector<std::string>& headerLines, void* context,
                                        ProgressFunction progress, std::string& reason, int& errorNumber)
{
    requestHeaders.push_back(headerLines);
    note("GET " + url);
    const ScriptedFile& file = files[libraryOf(url)];
    const double total = static_cast<double>(file.body.size());
    test::writeFile(target.toNativeString(), file.body);
    const std::vector<double> whole{total};
    for (const double bytes : file.progress.empty() ? whole : file.progress) {
        if (progress(context, total, bytes, 0, 0) == 0)
            continue;
        reason = "Callback aborted";
        errorNumber = kAbortedByCallback;
        return false;
    }
    if (!file.failure.empty()) {
        reason = file.failure;
        errorNumber = 56;
        return false;
    }
    if (file.afterDownload)
        file.afterDownload(target);
    return true;
}

bool ScriptedCurl::getURLHeader(const std::string& url, const std::vector<std::string>& headerLines,
                                std::string& headerText, std::int64_t& status)
{
    requestHeaders.push_back(headerLines);
    note("HEAD " + url);
    const auto found = files.find(libraryOf(url));
    if (found == files.end()) {
        status = 404;
        headerText = "HTTP/1.1 404 Not Found\r\n\r\n";
        return true;
    }
    const ScriptedFile& file = found->second;
    if (file.headerFails)
        return false;
    const std::string condition = "If-None-Match: \"" + file.tag + "\"";
    const bool isCurrent = std::count(headerLines.begin(), headerLines.end(), condition) > 0;
    status = isCurrent && file.status == 200 ? 304 : file.status;
    headerText = answer(file, status);
    return true;
}

bool ScriptedCurl::browseURL(const std::string& url, const std::vector<std::string>& headerLines,
                             std::string& body, bool followRedirects, int timeoutSeconds)
{
    requestHeaders.push_back(headerLines);
    note("PAGE " + url);
    const auto found = files.find(libraryOf(url));
    if (found == files.end() || !followRedirects || timeoutSeconds != 0)
        return false;
    body = found->second.page;
    return found->second.status < 400;
}

std::string ScriptedCurl::urlAfterRedirects(const std::string& url)
{
    note("REDIRECT " + url);
    return endpoint;
}

} // namespace test
