#pragma once

#include <chrono>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "OrvLibrary/host/impl/http/CurlService_p.h"
#include "tests/support/FaultServer.h"
#include "tests/support/ScopedHost.h"

namespace test {

/// Timeouts that a test can wait for.
inline HttpLimits shortLimits()
{
    HttpLimits limits;
    limits.connectTimeout = std::chrono::milliseconds(500);
    limits.totalTimeout = std::chrono::milliseconds(400);
    limits.slowTime = std::chrono::milliseconds(300);
    limits.progressSilence = std::chrono::milliseconds(100);
    return limits;
}

/// The default download service, a server, and a folder for downloads.
class CurlFixture : public testing::Test
{
public:
    explicit CurlFixture(const HttpLimits& limits = HttpLimits()) : curl(limits) {}

    fileString target(const std::string& name = "a.orvlib") const { return folder.file(name); }
    /// Downloads `url` to `target()` and keeps the service's reason and error number.
    bool fetch(const std::string& url, const std::vector<std::string>& headerLines = {},
               Curl::ProgressFunction progress = nullptr, void* context = nullptr)
    {
        reason.clear();
        errorNumber = 0;
        return curl.download_to_location(url, target(), headerLines, context, progress, reason, errorNumber);
    }
    bool header(const std::string& url, const std::vector<std::string>& headerLines = {})
    {
        headerText = "untouched";
        status = -1;
        return curl.getURLHeader(url, headerLines, headerText, status);
    }
    bool browse(const std::string& url, bool followRedirects = true)
    {
        return curl.browseURL(url, {}, body, followRedirects, 0);
    }
    template <class Work>
    static std::chrono::milliseconds timeOf(Work work)
    {
        const auto start = std::chrono::steady_clock::now();
        work();
        return std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now() -
                                                                     start);
    }
    std::vector<std::string> files() const { return listTree(folder.path()); }

    TempFolder folder;
    FaultServer server;
    CurlService curl;
    std::string reason;
    int errorNumber = 0;
    std::string headerText;
    std::int64_t status = -1;
    std::string body;
};

} // namespace test
