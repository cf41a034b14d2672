// An update is cancelled with 300 catalogs left, while the service does not reply to a request of one kind.
// The tests count the requests after the cancel: there are no new ones.
#include <atomic>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include <QElapsedTimer>
#include <QSignalSpy>
#include <QTest>

#include "OrvHost/history/CatalogPins.h"
#include "OrvHost/update/CatalogUpdateRun.h"
#include "tests/orv-host/HostedTest.h"
#include "tests/support/ContentService.h"
#include "tests/support/SlotRecorder.h"

using test::FaultReply;
using test::FaultRequest;

namespace {

const std::string kIndex = "Orv_Core_Content_Index.txt";
const std::string kDoors(20'000, 'd');
constexpr int kCatalogs = 300;
/// The largest number of requests that can be in progress at once.
constexpr std::size_t kConnections = 16;

bool isRedirect(const FaultRequest& request)
{
    return request.path() == "/redirect";
}
bool isSecondStep(const FaultRequest& request)
{
    return request.path() == "/second";
}
bool isIndex(const FaultRequest& request)
{
    return request.target.find(kIndex) != std::string::npos;
}
bool isHeader(const FaultRequest& request)
{
    return request.method == "HEAD";
}
bool isBody(const FaultRequest& request)
{
    return request.method == "GET" && request.target.find("Doors.orvlib") != std::string::npos;
}
bool isErrorPage(const FaultRequest& request)
{
    return request.method == "GET" && request.target.find("More") != std::string::npos;
}
bool isRange(const FaultRequest& request)
{
    return !request.header("Range").empty();
}

/// A kind of request, and the service's reply to it.
struct Cell
{
    const char* name;
    bool (*isMeant)(const FaultRequest&);
    FaultReply reply;
    std::optional<FaultReply> first = {}; ///< the reply to the first such request
    bool isHeld = false;                  ///< whether the catalog is held; its download is the last one
};

std::vector<Cell> cells()
{
    const FaultReply silence = FaultReply::silence();
    const FaultReply busy = FaultReply::status(503);
    const FaultReply wait = FaultReply::status(429, "", {"Retry-After: 25"});
    const FaultReply broken = FaultReply::ok("").cutAt(0).reset();
    return {
        {"redirect", isRedirect, silence},
        {"redirect, tried again", isRedirect, silence, busy},
        {"redirect, pause", isRedirect, wait},
        {"second step", isSecondStep, silence},
        {"index", isIndex, silence},
        {"index, tried again", isIndex, silence, broken},
        {"index, in the middle", isIndex, FaultReply::ok(std::string(900, 'x')).silentInBodyAt(100)},
        {"index, pause", isIndex, wait},
        {"header", isHeader, silence},
        {"header, in the middle", isHeader, FaultReply::ok(kDoors).silentAt(20)},
        {"header, tried again", isHeader, silence, busy},
        {"header, pause", isHeader, wait},
        {"page of an error", isErrorPage, silence},
        {"body", isBody, silence},
        {"body, in the middle", isBody, FaultReply::ok(kDoors).silentInBodyAt(9000)},
        {"body, tried again", isBody, silence, busy},
        {"body, pause", isBody, wait},
        {"rest of a body", isRange, silence},
        {"rest of a body, tried again", isRange, silence, broken},
        {"body of a held catalog", isBody, silence, {}, true},
    };
}

class CatalogUpdateCancelTest : public test::HostedTest
{
protected:
    /// Starts an update with the replies of the cell, cancels it when it gets there, and waits for its end.
    void expectHeard(const Cell& cell, bool isFar)
    {
        SCOPED_TRACE(std::string(cell.name) + (isFar ? ", far" : ", near"));
        test::ContentService service;
        offer(service);
        std::atomic<int> met{0}, reached{0};
        service.spoilWith([&](const FaultReply& sound, const FaultRequest& request) {
            FaultReply reply = sound;
            if (cell.isMeant(request)) {
                const bool isFirst = met++ == 0;
                reply = isFirst && cell.first ? *cell.first : cell.reply;
                reached += isFirst && cell.first ? 0 : 1;
            }
            return isFar ? reply.pauseAt(0, std::chrono::milliseconds(8)) : reply;
        });
        if (cell.isMeant == isSecondStep)
            service.server().on("/redirect", FaultReply::redirect("/second"));
        if (cell.isMeant == isRange)
            service.cutBodies(5000);
        hold(cell.isHeld);

        OrvHost::CatalogUpdateRun run(requestTo(service));
        test::SlotRecorder recorder;
        QSignalSpy finished(&run, &OrvHost::CatalogUpdateRun::finished);
        run.start(recorder);
        ASSERT_TRUE(QTest::qWaitFor([&] { return reached > 0; }, 30'000));
        const std::size_t before = service.server().requests().size();
        QElapsedTimer timer;
        timer.start();
        OrvHost::CatalogUpdateRun::cancel();
        ASSERT_TRUE(finished.wait(30'000));
        EXPECT_LT(timer.elapsed(), 2000);
        EXPECT_LE(service.server().requests().size(), before + (isFar ? kConnections : 1));
        EXPECT_EQ(recorder.closings(), 1U);
        EXPECT_EQ(recorder.count("onClose"), cell.isHeld ? 0U : 1U);
        run.finish(recorder.closingData(), host.root());
    }

private:
    static void offer(test::ContentService& service)
    {
        std::string index = "Doors.orvlib\n";
        for (int number = 0; number < kCatalogs; ++number)
            index += "More " + std::to_string(number) + ".orvlib\n";
        service.offer(kIndex, index);
        service.offer("Doors.orvlib", kDoors);
        for (int number = 0; number < kCatalogs; number += 10) // the service does not have the others
            service.offer("More " + std::to_string(number) + ".orvlib", kDoors);
    }

    /// Prepares an empty library, or one that has every catalog of the service except the first, which is
    /// held.
    void hold(bool isHeld)
    {
        for (const char* name : {"core", "temp", "history"})
            std::filesystem::remove_all(folder.path() + "/root/" + name);
        if (!isHeld)
            return;
        std::string lines = "Doors.orvlib:former\n";
        folder.write("root/core/Doors.orvlib", "former");
        for (int number = 0; number < kCatalogs; number += 10) {
            const std::string name = "More " + std::to_string(number) + ".orvlib";
            folder.write("root/core/" + name, kDoors);
            lines += name + ":" + test::ContentService::sha1(kDoors) + "\n";
        }
        folder.write("root/core/catalog_hash.txt", lines);
        OrvHost::CatalogPins pins(host.root());
        pins.hold(OrvHost::CatalogPlaces::ofKey("core/Doors.orvlib"), {"former", ""});
        pins.save();
    }

    static OrvHost::CatalogUpdateRun::Request requestTo(const test::ContentService& service)
    {
        OrvHost::CatalogUpdateRun::Request request;
        request.url = service.redirect();
        request.product = "P";
        request.productVersion = "1";
        request.checksDatabases = false;
        request.firstPause = std::chrono::milliseconds(1);
        return request;
    }
};

} // namespace

TEST_F(CatalogUpdateCancelTest, itIsHeardAtEveryKindOfRequest)
{
    for (const Cell& cell : cells()) {
        for (const bool isFar : {false, true})
            expectHeard(cell, isFar);
    }
}
