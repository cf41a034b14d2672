// Failing allocations in the download service and in the refresh of the manufacturers.
#include <chrono>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "OrvLibrary/Manufacturer/ManufacturerManager.h"
#include "OrvLibrary/host/WebUtils.h"
#include "OrvLibrary/host/impl/http/CurlService_p.h"
#include "tests/allocation-sweeps/AllocationPlan.h"
#include "tests/allocation-sweeps/AllocationScenario.h"
#include "tests/support/ArchiveBuilder.h"
#include "tests/support/FaultServer.h"

using test::AllocationScenario;
using test::CountedAllocations;
using test::FaultReply;

namespace {

const char kRecords[] = R"({"Last_Modified": "20300101T000000", "Default_Text": "ask the maker himself",
    "Manufacturer": {"Id": 1, "Name": "A maker of doors and windows", "Logo": "new logo.png",
    "Last_Modified": "20300101T000000"}})";

class ServiceScenario : public AllocationScenario
{
public:
    ServiceScenario(test::ScopedHost& host, test::FaultServer& server)
        : AllocationScenario(host), mServer(server)
    {
    }

protected:
    test::FaultServer& server() { return mServer; }

private:
    test::FaultServer& mServer;
};

int goOn(void*, double, double, double, double)
{
    return 0;
}

class Download : public ServiceScenario
{
public:
    using ServiceScenario::ServiceScenario;

    void prepare() override { host().folder().write("user/file", "old"); }
    void act() override
    {
        const fileString target = host().folder().file("user/file");
        const std::string url = server().url("/file?");
        const std::vector<std::string> headerLines{"X-Header: with some text in it"};
        std::string reason;
        int error = 0;
        const CountedAllocations counted;
        Curl::get().download_to_location(url, target, headerLines, nullptr, goOn, reason, error);
    }
    /// The contract of the service: a failed download removes its target.
    bool isExcepted(const std::string& name) const override { return name == "user/file"; }
};

/// Downloads ahead from a far service.
class DownloadsAhead : public ServiceScenario
{
public:
    using ServiceScenario::ServiceScenario;

    void prepare() override
    {
        for (int i = 0; i < kFiles; ++i)
            host().folder().write(nameOf(i), "old");
    }
    void act() override
    {
        std::vector<Curl::DownloadRequest> requests;
        for (int i = 0; i < kFiles; ++i)
            requests.push_back(
                {server().url("/far?" + std::to_string(i)), {}, host().folder().file(nameOf(i)), 20'000});
        const std::string first = server().url("/far");
        std::string text;
        std::int64_t status = 0;
        const CountedAllocations counted;
        Curl::get().getURLHeader(first, {}, text, status);
        Curl::get().prefetchDownloads(requests);
        for (const auto& request : requests) {
            std::string reason;
            int error = 0;
            Curl::get().download_to_location(request.url, request.target, request.headerLines, nullptr, goOn,
                                             reason, error);
        }
        Curl::get().prefetchDownloads({});
    }
    /// The contract of the service: a failed download removes its target.
    bool isExcepted(const std::string& name) const override { return name.rfind("user/far", 0) == 0; }

private:
    static constexpr int kFiles = 4;
    static std::string nameOf(int number) { return "user/far" + std::to_string(number); }
};

class Requests : public ServiceScenario
{
public:
    using ServiceScenario::ServiceScenario;

    bool mayThrow() const override { return true; } // helper functions around the service

    void act() override
    {
        std::string text;
        std::string page;
        std::int64_t status = 0;
        const CountedAllocations counted;
        Curl::get().prefetchHeaders({{server().url("/file?1"), {}}, {server().url("/file?2"), {}}});
        for (const char* target : {"/file?1", "/file?2", "/file?3"})
            Curl::get().getURLHeader(server().url(target), {}, text, status);
        Curl::get().prefetchHeaders({});
        Curl::get().browseURL(server().url("/file"), {}, page, true, 0);
        WebUtils::getUrlAfterRedirects(server().url("/redirect"));
        WebUtils::HeaderMap headers;
        WebUtils::parseReturnHeader(text, headers);
    }
};

class Refresh : public ServiceScenario
{
public:
    using ServiceScenario::ServiceScenario;

    void prepare() override
    {
        host().folder().write("manufacturer-data/manufacturer_data.json",
                              R"({"Last_Modified": "20200101T000000", "Default_Text": "old",
                                  "Manufacturer": {"Id": 1, "Name": "A maker", "Logo": "old logo.png",
                                  "Last_Modified": "20200101T000000"}})");
        host().folder().write("manufacturer-data/old logo.png", "old logo");
    }
    void act() override
    {
        ManufacturerManager::cleanup();
        ManufacturerManager& manager = *ManufacturerManager::getManufacturerManager();
        const marl::unicode::String data(server().url("/makers?"));
        const marl::unicode::String logos(server().url("/file?"));
        const CountedAllocations counted;
        manager.checkForManufacturerUpdates(data, logos);
    }
    /// The file is removed before its successor arrives. A logo whose download failed is fetched again only
    /// when its record changes.
    bool isExcepted(const std::string& name) const override
    {
        return name == "manufacturer-data/old logo.png";
    }
    bool mayStayOut(const std::string& name) const override
    {
        return name == "manufacturer-data/new logo.png";
    }
};

class ServiceAllocations : public testing::Test
{
protected:
    ServiceAllocations()
    {
        mServer.on("/file", FaultReply::ok(test::sampleBytes(20'000, 1), {"ETag: \"a tag of some length\""}));
        mServer.on("/far",
                   FaultReply::ok(test::sampleBytes(20'000, 2)).pauseAt(0, std::chrono::milliseconds(7)));
        mServer.on("/redirect", FaultReply::redirect("/file?with=a&query="));
        mServer.on("/makers", FaultReply::ok(kRecords));
        Curl::install(&mService);
    }
    ~ServiceAllocations() override
    {
        Curl::install(nullptr);
        ManufacturerManager::cleanup();
    }

    template <class Scenario>
    void sweep()
    {
        Scenario(mHost, mServer).sweep();
    }

    test::ScopedHost mHost;
    test::FaultServer mServer;
    CurlService mService;
};

} // namespace

TEST_F(ServiceAllocations, aDownloadIsWholeOrNotThere)
{
    sweep<Download>();
}

TEST_F(ServiceAllocations, downloadsAheadAreWholeOrNotThere)
{
    sweep<DownloadsAhead>();
}

TEST_F(ServiceAllocations, requestsGoOnAfterAFailure)
{
    sweep<Requests>();
}

TEST_F(ServiceAllocations, aRefreshLosesNoRecord)
{
    sweep<Refresh>();
}

TEST_F(ServiceAllocations, theFirstRequestsOfAThreadLeaveTheNextOneWell)
{
    const std::vector<Curl::HeaderRequest> list{{mServer.url("/file?1"), {}}, {mServer.url("/file?2"), {}}};
    bool hasFailed = true;
    for (std::size_t failing = 1; hasFailed; ++failing) {
        SCOPED_TRACE(failing);
        std::thread([&] {
            std::string text;
            std::int64_t status = 0;
            {
                const test::AllocationPlan plan(failing);
                try {
                    const CountedAllocations counted;
                    Curl::get().prefetchHeaders(list);
                    for (const Curl::HeaderRequest& request : list)
                        Curl::get().getURLHeader(request.url, request.headerLines, text, status);
                } catch (const std::bad_alloc&) {
                    // It is a host service, which may throw.
                }
                hasFailed = plan.hasFailed();
            }
            for (const Curl::HeaderRequest& request : list) {
                status = 0;
                EXPECT_TRUE(Curl::get().getURLHeader(request.url, request.headerLines, text, status));
                EXPECT_EQ(status, 200);
            }
        }).join();
    }
}
