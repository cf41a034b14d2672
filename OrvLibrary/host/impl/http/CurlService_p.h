#pragma once

#include <algorithm>
#include <atomic>
#include <chrono>
#include <functional>
#include <mutex>

#include "OrvLibrary/host/Curl.h"
#include "OrvLibrary/host/impl/http/AheadList_p.h"
#include "OrvLibrary/host/impl/http/HttpLimits_p.h"

struct CurlThread;

/// The default download service, made with libcurl. May be used from any thread. All threads share the
/// settings and the memory of addresses; each has its own connections.
class CurlService : public Curl
{
public:
    explicit CurlService(const HttpLimits& limits = HttpLimits());

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
    void prefetchHeaders(const std::vector<HeaderRequest>& requests) override;
    void prefetchDownloads(const std::vector<DownloadRequest>& requests) override;
    std::string urlAfterRedirects(const std::string& url) override;
    Answer lastAnswer() override;
    bool downloadResumable(const ResumableDownload& request, void* context, ProgressFunction progress,
                           std::string& reason, int& errorNumber) override;

    void setProxy(const std::string& proxy);
    void setCertificates(const std::string& fileOrFolder);
    /// Values outside of 1 to 96 are moved to the nearest bound.
    void setConnectionLimit(int limit) { mConnectionLimit = std::clamp(limit, 1, kMostConnections); }
    /// Opens every address that was closed because it did not answer.
    void forgetUnanswered() { mMemory->openAll(); }

private:
    static constexpr int kMostConnections = 96;
    /// The connection limit if the host sets none.
    static constexpr int kConnections = 16;

    HttpRequest request(const std::string& url, const std::vector<std::string>& headerLines);
    HttpAnswer ask(HttpRequest request, HttpBody& body, HttpLimits::Milliseconds timeout);
    bool downloadOrThrow(const ResumableDownload& download, void* context, ProgressFunction progress,
                         FileBody::Failure& failure);
    void announce(std::unique_ptr<AheadList> CurlThread::*place,
                  const std::function<void(std::vector<AheadRequest>&)>& fill);

    const HttpLimits mLimits;
    /// Shared with the lists of announced requests, which may live longer than the service.
    const std::shared_ptr<AddressMemory> mMemory;
    std::mutex mSettingsMutex;
    std::string mProxy;
    std::string mCertificates;
    std::atomic<int> mConnectionLimit{kConnections};
};

/// The service that `Curl::get` returns if the host has installed none.
CurlService& defaultCurlService();
