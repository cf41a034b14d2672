#include "OrvHost/update/ServiceAccess.h"

#include <chrono>
#include <stdexcept>

#include <gtest/gtest.h>

#include "OrvLibrary/host/Curl.h"
#include "tests/support/ContentService.h"
#include "tests/support/TempFolder.h"

using OrvHost::ServiceAccess;

namespace {

class ServiceAccessTest : public testing::Test
{
protected:
    ServiceAccessTest()
    {
        closed.stopListening();
        service.offer("Doors.orvlib", std::string(20'000, 'x'));
    }
    ~ServiceAccessTest() override { ServiceAccess().apply(); }

    bool fetch(const std::string& url)
    {
        Curl::forgetFailures();
        return Curl::get().download_to_location(url, folder.file("target"), reason);
    }
    std::string url() { return service.server().url("/c?&library=Doors.orvlib&product=P&version=1"); }

    /// An address at which nobody listens.
    std::string elsewhere() const { return closed.url("/c?&library=Doors.orvlib&product=P&version=1"); }

    test::TempFolder folder;
    test::FaultServer closed;
    test::ContentService service;
    std::string reason;
};

} // namespace

TEST_F(ServiceAccessTest, certificatesThatCannotBeReadChangeNothing)
{
    ServiceAccess access;
    access.certificates = folder.file("missing.pem").toNativeString();
    access.proxy = service.server().url("");
    EXPECT_THROW(access.apply(), std::runtime_error);
    EXPECT_FALSE(fetch(elsewhere()));
    EXPECT_TRUE(service.server().requests().empty());
    for (const std::string& sound :
         {std::string(), folder.path(), folder.write("own.pem", "x").toNativeString()}) {
        access.certificates = sound;
        EXPECT_NO_THROW(access.apply()) << sound;
    }
}

TEST_F(ServiceAccessTest, proxyGetsTheRequestsUntilTheNextCall)
{
    ServiceAccess access;
    access.proxy = service.server().url("");
    access.apply();
    fetch(elsewhere());
    EXPECT_EQ(service.server().requests().size(), 1U);
    ServiceAccess().apply();
    fetch(elsewhere());
    EXPECT_EQ(service.server().requests().size(), 1U);
}

TEST_F(ServiceAccessTest, limitSlowsTransfersDown)
{
    ServiceAccess access;
    access.limitRate = 20'000;
    access.apply();
    const auto start = std::chrono::steady_clock::now();
    EXPECT_TRUE(fetch(url())) << reason;
    EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(200));
}
