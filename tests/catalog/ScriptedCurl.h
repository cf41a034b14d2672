#pragma once

#include <functional>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "OrvLibrary/host/Curl.h"

namespace test {

/// One file of a scripted catalog service, and the results of its requests.
struct ScriptedFile
{
    std::string body;
    std::string tag;
    /// The status of header requests; 200 becomes 304 if the request contains the tag.
    std::int64_t status = 200;
    /// The header lines after the status line. If empty, `ETag` and `Content-Length` follow from tag and
    /// body.
    std::string headerLines;
    /// The page that `browseURL` returns.
    std::string page;
    bool headerFails = false;
    /// The reason with which the download fails; empty: it succeeds.
    std::string failure;
    /// The byte counts for the calls of the progress function. If empty, there is one call with the whole
    /// body.
    std::vector<double> progress;
    /// Called after the download was written.
    std::function<void(const fileString& target)> afterDownload;
};

/// A download service without a network. It returns scripted responses and records the requests. Set it up
/// before a run and inspect it afterwards.
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

    /// The files by the value of "library" in the request.
    std::map<std::string, ScriptedFile> files;
    std::string endpoint = "http://service.test/content?key=1";
    /// "REDIRECT address", "HEAD url", "GET url" and "PAGE url" for each request, in order.
    std::vector<std::string> requests;
    /// The announced lists of header requests, each with the number of requests that were made before.
    std::vector<std::pair<std::size_t, std::vector<HeaderRequest>>> announcements;
    /// Called for each announced list of header requests or downloads.
    std::function<void()> onAnnouncement;
    /// The announced lists of downloads, each with the number of requests that were made before.
    std::vector<std::pair<std::size_t, std::vector<DownloadRequest>>> downloadAnnouncements;
    /// The header lines of each request except redirects, in order.
    std::vector<std::vector<std::string>> requestHeaders;
    /// Called at the start of each request with its entry for `requests`.
    std::function<void(const std::string&)> onRequest;

    /// The values of "library" in the requests of one kind, in order.
    std::vector<std::string> asked(const std::string& kind) const;

private:
    void note(const std::string& request);
};

} // namespace test
