#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "OrvHost/OrvHostExport.h"
#include "OrvLibrary/host/Curl.h"

namespace OrvHost {

/// A download service that passes everything on to another one. Base class for services that watch.
class ORVHOST_EXPORT ForwardingCurl : public Curl
{
public:
    /// @param next not owned
    explicit ForwardingCurl(Curl& next) : mNext(next) {}

    bool downloadable(const std::string& url) override { return mNext.downloadable(url); }
    fileString download(const std::string& url) override { return mNext.download(url); }
    bool download_to_location(const std::string& url, const fileString& target, std::string& reason) override
    {
        return mNext.download_to_location(url, target, reason);
    }
    bool download_to_location(const std::string& url, const fileString& target,
                              const std::vector<std::string>& headerLines, void* context,
                              ProgressFunction progress, std::string& reason, int& errorNumber) override
    {
        return mNext.download_to_location(url, target, headerLines, context, progress, reason, errorNumber);
    }
    bool getURLHeader(const std::string& url, const std::vector<std::string>& headerLines,
                      std::string& headerText, std::int64_t& status) override
    {
        return mNext.getURLHeader(url, headerLines, headerText, status);
    }
    bool browseURL(const std::string& url, const std::vector<std::string>& headerLines, std::string& body,
                   bool followRedirects, int timeoutSeconds) override
    {
        return mNext.browseURL(url, headerLines, body, followRedirects, timeoutSeconds);
    }
    void prefetchHeaders(const std::vector<HeaderRequest>& requests) override
    {
        mNext.prefetchHeaders(requests);
    }
    void prefetchDownloads(const std::vector<DownloadRequest>& requests) override
    {
        mNext.prefetchDownloads(requests);
    }
    Answer lastAnswer() override { return mNext.lastAnswer(); }
    bool downloadResumable(const ResumableDownload& request, void* context, ProgressFunction progress,
                           std::string& reason, int& errorNumber) override
    {
        return mNext.downloadResumable(request, context, progress, reason, errorNumber);
    }
    std::string urlAfterRedirects(const std::string& url) override { return mNext.urlAfterRedirects(url); }

private:
    Curl& mNext;
};

} // namespace OrvHost
