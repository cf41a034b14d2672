#pragma once

#include <chrono>
#include <functional>
#include <string>
#include <vector>

#include "OrvLibrary/host/FileUtils.h"
#include "OrvLibrary/host/impl/files/ReplacementFile_p.h"
#include "tests/host/http/CurlFixture.h"

namespace test {

using Downloads = std::vector<Curl::DownloadRequest>;

/// Records the calls of one progress function and aborts at a given count of bytes.
struct Listener
{
    std::vector<double> counts;
    double abortAt = -1;
    std::function<void()> onCall;

    static int listen(void* self, double, double downloaded, double, double)
    {
        auto& listener = *static_cast<Listener*>(self);
        listener.counts.push_back(downloaded);
        if (listener.onCall)
            listener.onCall();
        return listener.abortAt >= 0 && downloaded >= listener.abortAt ? 1 : 0;
    }
};

/// Downloads to announce to the service, and a server that replies with a delay, as a distant server does.
class CurlDownloadsFixture : public CurlFixture
{
protected:
    /// Limits for tests that count requests. Other programs may keep the server from the processor for
    /// seconds; the service must not give up requests ahead because of that.
    static HttpLimits patientLimits()
    {
        HttpLimits limits;
        limits.aheadPatience = 60;
        return limits;
    }
    explicit CurlDownloadsFixture(const HttpLimits& limits = HttpLimits()) : CurlFixture(limits)
    {
        server.on("/first", FaultReply::ok("").pauseAt(0, delay));
    }
    ~CurlDownloadsFixture() override { curl.prefetchDownloads({}); }

    static std::string bodyOf(int number, std::size_t size = 10'000)
    {
        return std::string(size, static_cast<char>('a' + number % 26)) + std::to_string(number);
    }
    static std::string nameOf(int number) { return "/" + std::to_string(number); }
    /// Creates the files "/0", "/1" and so on at the server. Returns the list to announce.
    Downloads serve(int count, std::size_t size = 10'000)
    {
        Downloads downloads;
        for (int i = 0; i < count; ++i) {
            const std::string content = bodyOf(i, size);
            server.on(nameOf(i), FaultReply::ok(content).pauseAt(0, delay));
            downloads.push_back({server.url(nameOf(i)),
                                 {"X-Number: " + std::to_string(i)},
                                 folder.file(std::to_string(i) + ".download"),
                                 static_cast<std::int64_t>(content.size())});
        }
        return downloads;
    }
    /// Makes requests so that the service has measured how long the server takes to respond.
    void learnLatency(const std::string& path = "/first")
    {
        for (int i = 0; i < 3; ++i)
            header(server.url(path));
        requestsBefore = server.requests().size();
    }
    void announce(const Downloads& downloads)
    {
        learnLatency();
        curl.prefetchDownloads(downloads);
    }
    bool get(const Curl::DownloadRequest& request, Listener* listener = nullptr)
    {
        reason.clear();
        errorNumber = 0;
        return curl.download_to_location(request.url, request.target, request.headerLines, listener,
                                         listener ? Listener::listen : nullptr, reason, errorNumber);
    }
    /// Runs transfers while the condition holds, at most 10 s.
    template <class Condition>
    void moveOnWhile(Condition condition)
    {
        const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(10);
        while (condition() && std::chrono::steady_clock::now() < end)
            header(server.url("/step"));
    }
    /// Runs transfers until the whole body has arrived ahead.
    void waitForBody(const Curl::DownloadRequest& request)
    {
        const fileString ahead(host::ReplacementFile::besideName(request.target.toNativeString()));
        moveOnWhile([&] { return FileUtils::fileSize(ahead) < request.size; });
        EXPECT_EQ(FileUtils::fileSize(ahead), request.size);
        header(server.url("/step"));
    }

    std::chrono::milliseconds delay{15};
    std::size_t requestsBefore = 0;
};

} // namespace test
