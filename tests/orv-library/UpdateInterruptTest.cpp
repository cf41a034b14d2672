// The user interrupts an update with 300 catalogs left while the service does not reply.
#include <atomic>
#include <chrono>
#include <csignal>
#include <thread>

#include <QElapsedTimer>

#include <gmock/gmock.h>

#include "tests/orv-library/Program.h"
#include "tests/support/ContentService.h"

using test::FaultReply;
using test::FaultRequest;

namespace {

const std::string kIndex = "Orv_Core_Content_Index.txt";

class UpdateInterrupt : public testing::Test
{
protected:
    UpdateInterrupt()
    {
        std::string index = "Doors.orvlib\n";
        for (int number = 0; number < 300; ++number)
            index += "More " + std::to_string(number) + ".orvlib\n";
        service.offer(kIndex, index);
        service.offer("Doors.orvlib", std::string(20'000, 'd'));
    }

    /// Sends `reply` to the requests for which `isMeant` holds, and sound replies to all others.
    void answer(bool (*isMeant)(const FaultRequest&), const FaultReply& reply)
    {
        service.spoilWith([this, isMeant, reply](const FaultReply& sound, const FaultRequest& request) {
            if (!isMeant(request))
                return sound;
            ++mReached;
            return reply;
        });
    }

    /// Starts an update, waits until the service receives such a request, and interrupts the update.
    void expectHeard(const std::string& url, const std::vector<std::string>& options = {})
    {
        std::vector<std::string> arguments = {"--progress", "none", "update", "--url", url};
        arguments.insert(arguments.end(), options.begin(), options.end());
        const auto running = program.start(arguments);
        ASSERT_TRUE(waitUntilReached());
        const std::size_t before = service.server().requests().size();
        QElapsedTimer timer;
        timer.start();
        ::kill(static_cast<pid_t>(running->processId()), SIGINT);
        const test::ProgramResult result = test::Program::finish(*running);
        EXPECT_LT(timer.elapsed(), 2000);
        EXPECT_EQ(130, result.status);
        EXPECT_EQ("orv-library: the update was cancelled\n", result.err);
        EXPECT_LE(service.server().requests().size(), before + 1) << "nothing more is asked";
    }

    bool waitUntilReached() const
    {
        QElapsedTimer timer;
        for (timer.start(); timer.elapsed() < 10'000;) {
            if (mReached > 0)
                return true;
            std::this_thread::sleep_for(std::chrono::milliseconds(2));
        }
        return false;
    }

    static bool isIndex(const FaultRequest& request)
    {
        return request.target.find(kIndex) != std::string::npos;
    }
    static bool isRedirect(const FaultRequest& request) { return request.path() == "/redirect"; }
    static bool isHeader(const FaultRequest& request) { return request.method == "HEAD"; }
    static bool isBody(const FaultRequest& request)
    {
        return request.method == "GET" && request.target.find("Doors.orvlib") != std::string::npos;
    }
    static bool isRange(const FaultRequest& request) { return !request.header("Range").empty(); }
    static bool isSecondStep(const FaultRequest& request) { return request.path() == "/second"; }

    std::atomic<int> mReached{0};
    test::ContentService service;
    test::Program program;
};

} // namespace

TEST_F(UpdateInterrupt, redirectThatIsNotAnsweredEnds)
{
    answer(isRedirect, FaultReply::silence());
    expectHeard(service.redirect());
}

TEST_F(UpdateInterrupt, secondStepOfARedirectEnds)
{
    answer(isSecondStep, FaultReply::silence());
    service.server().on("/redirect", FaultReply::redirect("/second"));
    expectHeard(service.redirect());
}

TEST_F(UpdateInterrupt, indexThatIsNotAnsweredEnds)
{
    answer(isIndex, FaultReply::silence());
    expectHeard(service.redirect());
}

TEST_F(UpdateInterrupt, headerThatIsNotAnsweredEnds)
{
    answer(isHeader, FaultReply::silence());
    expectHeard(service.redirect());
}

TEST_F(UpdateInterrupt, bodyThatIsNotAnsweredEnds)
{
    answer(isBody, FaultReply::silence());
    expectHeard(service.redirect());
}

TEST_F(UpdateInterrupt, bodyThatFallsSilentEnds)
{
    answer(isBody, FaultReply::ok(std::string(20'000, 'd')).silentInBodyAt(9000));
    expectHeard(service.redirect());
}

TEST_F(UpdateInterrupt, rangeThatIsNotAnsweredEnds)
{
    service.cutBodies(5000);
    answer(isRange, FaultReply::silence());
    expectHeard(service.redirect());
}

TEST_F(UpdateInterrupt, pauseBeforeTheNextTryEnds)
{
    answer(isHeader, FaultReply::status(503, "", {"Retry-After: 25"}));
    expectHeard(service.redirect());
}

TEST_F(UpdateInterrupt, proxyThatDoesNotAnswerEnds)
{
    test::FaultServer proxy;
    proxy.otherwise([this](const FaultRequest&) {
        ++mReached;
        return FaultReply::silence();
    });
    expectHeard(service.redirect(), {"--proxy", proxy.url("")});
    mReached = 0;
    expectHeard("https://127.0.0.1:1/redirect", {"--proxy", proxy.url("")});
    EXPECT_EQ("CONNECT", proxy.requests().back().method);
}

TEST_F(UpdateInterrupt, handshakeThatIsNotAnsweredEnds)
{
    test::FaultServer silent;
    silent.onAccept([this] { ++mReached; });
    expectHeard("https" + silent.url("/redirect").substr(4));
}
