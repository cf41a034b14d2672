#pragma once

#include <functional>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "OrvLibrary/host/Curl.h"

namespace test {

/// One file of a scripted catalog service, and how its requests go.
struct ScriptedFile
{
    std::string body;
    std::string tag;
    /// The header request's status; 200 becomes 304 when the request names the tag.
    std::int64_t status = 200;
    /// The lines behind the status line; without a text `ETag` and `Content-Length` are made of body and tag.
    std::string headerLines;
    /// Page that is served to `browseURL`.
    std::string page;
    bool headerFails = false;
    /// A text lets the download fail with it.
    std::string failure;
    /// The byte counts that the progress function is called with; without any, once with the whole body.
    std::vector<double> progress;
    /// Called when the download has been written.
    std::function<void(const fileString& target)> afterDownload;
};

/// A download service without a network: what a catalog service would answer, and a record of what it was
/// asked. Set up before a run and looked at after it.
class ScriptedCurl : public Curl
{
public:
    bool downloadable(const std::string& url) override;
    fileString download(const std::string& url) override;
    bool download_to_location(const std::string& url, const fileString& target, std::string& reason) override;
    bool download_to_location(const std::string& url, const fileString& target,
                              const std::vector<std::string>& headerLines, void* context,
                              ProgressFunction progress, std::string& reason, int& errorNumber) override;
    bool getURLHeader(const std::string& url, const std::vector<std::string>& headerLines,
                      std::string& headerText, std::int64_t& status) override;
    bool browseURL(const std::string& url, const std::vector<std::string>& headerLines, std::string& body,
                   bool followRedirects, int timeoutSeconds) override;
    std::string urlAfterRedirects(const std::string& url) override;
    void prefetchHeaders(const std::vector<HeaderRequest>& announced) override;
    void prefetchDownloads(const std::vector<DownloadRequest>& announced) override;

    /// The files, by the value of "library" in the request.
    std::map<std::string, ScriptedFile> files;
    std::string endpoint = "http://service.test/content?key=1";
    /// "REDIRECT address", "HEAD url", "GET url" and "PAGE url", in the order of the requests.
    std::vector<std::string> requests;
    /// The lists of header requests that were announced, each with the number of requests made before it.
    std::vector<std::pair<std::size_t, std::vector<HeaderRequest>>> announcements;
    /// Called when a list of either kind is announced.
    std::function<void()> onAnnouncement;
    /// The same for the lists of downloads.
    std::vector<std::pair<std::size_t, std::vector<DownloadRequest>>> downloadAnnouncements;
    /// The header lines of each request but the redirects, in order.
    std::vector<std::vector<std::string>> requestHeaders;
    /// Called at the start of each request, with its line.
    std::function<void(const std::string&)> onRequest;

    /// The values of "library" in the requests of one kind, in order.
    std::vector<std::string> asked(const std::string& kind) const;

private:
    void note(const std::string& request);
};

} // namespace test
