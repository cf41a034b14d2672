// The probes are reached through the doctor's steps. No connection leaves this machine: the system connects
// to no broadcast address, and knows at once that a single hyphen is no name.
#include <cerrno>
#include <chrono>
#include <cstring>

#include <arpa/inet.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <gmock/gmock.h>

#include "tests/orv-host/DoctorFixture.h"
#include "tests/support/DescriptorLimit.h"

using test::ScopedEnvironment;
using testing::HasSubstr;
using testing::StartsWith;

namespace {

class NetworkProbe : public test::DoctorFixture
{
protected:
    NetworkProbe()
    {
        server.otherwise([](const auto&) { return test::FaultReply::ok(""); });
    }

    std::string here() const { return "127.0.0.1:" + port(); }
    /// Whether the doctor uses the proxy that the environment or a setting names.
    bool usesProxy() const
    {
        const std::string text = good("proxy");
        EXPECT_TRUE(text == "no proxy is used" || text == "proxy " + here()) << text;
        return text != "no proxy is used";
    }
};

/// Takes all places in the queue of a server that accepts nobody.
class WaitingCallers
{
public:
    explicit WaitingCallers(int port)
    {
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_port = htons(static_cast<std::uint16_t>(port));
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        while (!mAreEnough && mCallers.size() < 10) {
            mCallers.push_back(socket(AF_INET, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0));
            connect(mCallers.back(), reinterpret_cast<const sockaddr*>(&address), sizeof address);
            pollfd waiting{mCallers.back(), POLLOUT, 0};
            mAreEnough = poll(&waiting, 1, 300) == 0;
        }
    }
    ~WaitingCallers()
    {
        for (const int caller : mCallers)
            close(caller);
    }
    WaitingCallers(const WaitingCallers&) = delete;
    WaitingCallers& operator=(const WaitingCallers&) = delete;

    bool areEnough() const { return mAreEnough; }

private:
    std::vector<int> mCallers;
    bool mAreEnough = false;
};

const std::string kNowhere = "255.255.255.255";

} // namespace

TEST_F(NetworkProbe, chosenProxyGoesBeforeTheEnvironment)
{
    EXPECT_FALSE(usesProxy());
    subject.values.proxy = here();
    const ScopedEnvironment other("http_proxy", "proxy.invalid:1");
    EXPECT_TRUE(usesProxy());
    EXPECT_EQ(good("name"), "the proxy looks names up");
    EXPECT_EQ(good("connection"), "the proxy connects");
}

TEST_F(NetworkProbe, variablesCountByTheSchemeOfTheAddress)
{
    struct Case
    {
        const char* variable;
        bool forHttp;
        bool forHttps;
    };
    for (const auto& [variable, forHttp, forHttps] :
         {Case{"http_proxy", true, false}, Case{"HTTP_PROXY", false, false}, Case{"https_proxy", false, true},
          Case{"HTTPS_PROXY", false, true}, Case{"all_proxy", true, true}, Case{"ALL_PROXY", true, true}}) {
        const ScopedEnvironment given(variable, here().c_str());
        use("http");
        EXPECT_EQ(usesProxy(), forHttp) << variable;
        use("httpS");
        EXPECT_EQ(usesProxy(), forHttps) << variable;
    }
}

TEST_F(NetworkProbe, smallLettersGoBeforeCapitalsAndASchemeBeforeAll)
{
    const ScopedEnvironment capitals[] = {{"HTTPS_PROXY", "proxy.invalid:1"},
                                          {"ALL_PROXY", "proxy.invalid:2"}};
    use("https");
    {
        const ScopedEnvironment small("https_proxy", here().c_str());
        EXPECT_TRUE(usesProxy());
    }
    {
        const ScopedEnvironment capital("HTTPS_PROXY", here().c_str());
        EXPECT_TRUE(usesProxy());
    }
    use("http");
    const ScopedEnvironment small("all_proxy", here().c_str());
    EXPECT_TRUE(usesProxy());
}

TEST_F(NetworkProbe, exceptionsAreHostsAndDomains)
{
    subject.values.proxy = here();
    const std::pair<const char*, bool> table[] = {
        {"127.0.0.1", true},   {"*", true},        {"0.0.1", true},        {".0.0.1", true},
        {"27.0.0.1", false},   {"127.0.0", false}, {"x, 127.0.0.1", true}, {" 127.0.0.1 ,,x", true},
        {"x127.0.0.1", false}, {"", false},        {",", false},           {"**", false}};
    for (const auto& [names, isExcepted] : table) {
        for (const char* const variable : {"no_proxy", "NO_PROXY"}) {
            const ScopedEnvironment given(variable, names);
            EXPECT_EQ(usesProxy(), !isExcepted) << names;
        }
    }
    const ScopedEnvironment capitals("NO_PROXY", "*");
    const ScopedEnvironment small("no_proxy", "x");
    EXPECT_TRUE(usesProxy());
}

TEST_F(NetworkProbe, proxyWithoutAPortHasTheUsualOne)
{
    const std::string advice = " | Ask your network's administrator for the proxy, or unset it.";
    const auto reason = [&](const std::string& proxy, const std::string& port) {
        return "the proxy " + proxy + " cannot be reached: " + kNowhere + " port " + port + ": " +
               std::strerror(ENETUNREACH) + advice;
    };
    for (const std::string& proxy : {kNowhere, "http://" + kNowhere, "socks5://" + kNowhere}) {
        subject.values.proxy = proxy;
        EXPECT_EQ(bad("proxy"), reason(proxy, "1080"));
        subject.values.proxy = proxy + ":3128";
        EXPECT_EQ(bad("proxy"), reason(proxy + ":3128", "3128"));
        subject.values.proxy = proxy + ":0";
        EXPECT_EQ(bad("proxy"), reason(proxy + ":0", "0"));
    }
    subject.values.proxy = "http://";
    EXPECT_EQ(bad("proxy"),
              "'http://' is no address of a proxy | Correct the setting 'proxy', or the variable "
              "http_proxy or https_proxy.");
}

TEST_F(NetworkProbe, addressWithoutAPortHasThatOfItsScheme)
{
    const std::string advice = " | The service may be down, or a firewall in the way; try again later.";
    const std::pair<std::string, std::string> table[] = {{"http://", "80"}, {"httpS://", "443"}};
    for (const auto& [scheme, port] : table) {
        subject.values.url = scheme + kNowhere + "/redirect";
        EXPECT_EQ(good("name"), kNowhere + " is " + kNowhere);
        EXPECT_EQ(bad("connection"), kNowhere + " port " + port + ": " + std::strerror(ENETUNREACH) + advice);
    }
}

TEST_F(NetworkProbe, nameThatNobodyKnowsIsTold)
{
    std::string name = "a";
    while (name.size() < 256)
        name += "." + std::string(50, 'a');
    const std::string reason = "Name or service not known | ";
    subject.values.url = "http://" + name + "/redirect";
    EXPECT_EQ(bad("name"),
              name + ": " + reason + "Look at the address and at this machine's network connection.");
    subject.values.proxy = name + ":3128";
    EXPECT_THAT(bad("proxy"), StartsWith("the proxy " + name + ":3128 cannot be reached: " + reason));
}

TEST_F(NetworkProbe, refusedConnectionIsTold)
{
    server.stopListening();
    EXPECT_EQ(bad("connection"),
              "127.0.0.1 port " + port() + ": " + std::strerror(ECONNREFUSED) +
                  " | The service may be down, or a firewall in the way; try again later.");
}

TEST_F(NetworkProbe, connectionWithoutADescriptorIsTold)
{
    const test::DescriptorLimit none(0);
    EXPECT_THAT(bad("connection"), StartsWith("127.0.0.1 port " + port() + ": " + std::strerror(EMFILE)));
}

TEST_F(NetworkProbe, connectionsAreClosed)
{
    const auto openOnes = [] { return test::listTree("/proc/self/fd").size(); };
    server.stopListening();
    examine();
    const std::size_t before = openOnes();
    examine();
    EXPECT_EQ(openOnes(), before);
}

TEST_F(NetworkProbe, serverThatDoesNotAnswerIsGivenUpAfterTenSeconds)
{
    server.stopAccepting();
    server.limitBacklog(0);
    const WaitingCallers callers(server.port());
    ASSERT_TRUE(callers.areEnough());
    const auto start = std::chrono::steady_clock::now();
    EXPECT_THAT(bad("connection"), StartsWith("127.0.0.1 port " + port() + ": " + std::strerror(ETIMEDOUT)));
    const auto time = std::chrono::steady_clock::now() - start;
    EXPECT_GE(time, std::chrono::seconds(10));
    EXPECT_LT(time, std::chrono::seconds(20));
}
