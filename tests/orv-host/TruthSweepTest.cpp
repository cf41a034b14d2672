// A service breaks one kind of request, is near or far, and limits the number of parallel requests. A run
// must never report success, with or without retries, while an old catalog is still installed. The next run
// against the repaired service installs everything. By default the tests run some of the cells; if ORV_SWEEP
// is "full", all of them.
#include <atomic>
#include <filesystem>
#include <functional>
#include <map>
#include <thread>

#include <QElapsedTimer>
#include <QSignalSpy>

#include <gmock/gmock.h>

#include "OrvHost/update/CatalogUpdateRun.h"
#include "tests/orv-host/HostedTest.h"
#include "tests/support/ArchiveBuilder.h"
#include "tests/support/BrokenService.h"
#include "tests/support/ContentService.h"
#include "tests/support/SampleDatabase.h"
#include "tests/support/SweepCells.h"

using LibraryCatalogUpdate::UpdateData;
using OrvHost::CatalogUpdateRun;
using OrvHost::UpdateOutcome;
using test::Behaviour;
using test::FaultReply;
using test::FaultRequest;

namespace {

constexpr int kTimeoutMilliseconds = 60'000;
const char* const kIndex = "Orv_Core_Content_Index.txt";

/// A host object with only the slots that an update needs.
class SweepHost : public QObject
{
    Q_OBJECT

public:
    explicit SweepHost(OrvHost::CatalogSwapper& swapper) : mSwapper(swapper) {}

    std::optional<UpdateData> closing;
    int closings = 0;

public Q_SLOTS:
    void onCatalogUpdatedEvent(FileStringPair catalog) { mSwapper.swapIn(catalog.first, catalog.second); }
    void closeCatalogUpdateEvent(const LibraryCatalogUpdate::UpdateData& data)
    {
        closing = data;
        ++closings;
    }
    void onClose() { ++closings; }

private:
    OrvHost::CatalogSwapper& mSwapper;
};

/// The ways to spoil a reply, without those that end only by a timeout.
std::vector<Behaviour> behaviours()
{
    using S = const FaultReply&;
    using R = const FaultRequest&;
    std::vector<Behaviour> all = {
        {"another tag", [](S s, R) { return FaultReply(s).withHeader("ETag: \"other\""); }},
        {"cut behind a kilobyte", [](S s, R) { return FaultReply(s).cutBodyAt(1900); }},
        {"reset behind a kilobyte", [](S s, R) { return FaultReply(s).cutBodyAt(1900).reset(); }},
        {"status 403", [](S s, R) { return FaultReply(s).withStatus(403); }},
        {"status 404", [](S s, R) { return FaultReply(s).withStatus(404); }},
        {"status 429", [](S, R) { return FaultReply::status(429); }},
        {"status 500", [](S s, R) { return FaultReply(s).withStatus(500); }},
        {"status 503", [](S, R) { return FaultReply::status(503, "", {"Retry-After: 0"}); }},
        {"status 503 for long", [](S, R) { return FaultReply::status(503, "", {"Retry-After: 3600"}); }},
    };
    for (const auto& group : {test::loginPages(), test::brokenServices()}) {
        for (const Behaviour& behaviour : group) {
            if (!behaviour.isSilent)
                all.push_back(behaviour);
        }
    }
    return all;
}

/// The ways to refuse a request over the limit.
std::vector<FaultReply> refusals()
{
    return {FaultReply::status(429), FaultReply::status(503), FaultReply::status(503, "", {"Retry-After: 0"}),
            FaultReply::raw("").reset(), FaultReply::raw("").close()};
}

/// A root with old catalogs and a service with newer ones.
class TruthSweep : public test::HostedTest
{
protected:
    TruthSweep()
    {
        offer("Doors.orvlib", test::sampleDatabase("new doors", 3000));
        offer("Roofs.orvlib", test::sampleDatabase("new roofs", 3000));
        test::ArchiveBuilder archive;
        archive.add("Lamps.orvlib", test::sampleDatabase(test::sampleBytes(3000, 8)));
        service.offer("Lamps.orvlibz", archive.bytes());
        wanted["bonus/Lamps.orvlib"] = test::sampleDatabase(test::sampleBytes(3000, 8));
        offerMore(4);
    }

    void offer(const std::string& name, const std::string& bytes)
    {
        service.offer(name, bytes);
        wanted["core/" + name] = bytes;
    }

    /// Adds `count` core catalogs to the service.
    void offerMore(int count)
    {
        for (int number = 0; number < count; ++number)
            offer("More " + std::to_string(number) + ".orvlib", test::sampleDatabase("more", 2000));
        std::string index;
        for (const auto& [name, bytes] : wanted)
            index += name.find("core/") == 0 ? name.substr(5) + "\n" : "";
        service.offer(kIndex, index);
    }

    void writeOld()
    {
        std::filesystem::remove_all(folder.path() + "/root/temp/partial");
        for (const auto& [name, bytes] : wanted)
            folder.write("root/" + name, test::sampleDatabase("old " + name, 2000));
        for (const char* const kind : {"core", "bonus"})
            folder.write("root/" + std::string(kind) + "/catalog_hash.txt", "");
        folder.write("root/core/catalog_hash.txt", "Doors.orvlib:old\nRoofs.orvlib:old\n");
    }

    /// Runs an update. Fails the test if the run reports success while an old catalog is left, or a failure
    /// without a cause.
    void expectTruth(int retries)
    {
        const UpdateOutcome outcome = run(retries);
        EXPECT_TRUE(!outcome.isGood() || missing() == 0)
            << outcome.name() << " with " << missing() << " old catalogs";
        EXPECT_TRUE(outcome.isGood() || !outcome.failed.empty())
            << outcome.error << "\n"
            << test::readFile(folder.file("root/user/errors.log"));
    }

    void expectHealed()
    {
        service.spoilWith(nullptr);
        service.server().limitRequests(1000, FaultReply::status(429));
        const UpdateOutcome outcome = run(0);
        EXPECT_TRUE(outcome.isGood()) << outcome.name() << " " << outcome.error << outcome.failedText();
        EXPECT_EQ(0U, missing());
    }

    test::ContentService service;
    std::map<std::string, std::string> wanted; ///< content by path below the root

private:
    UpdateOutcome run(int retries)
    {
        Curl::forgetFailures();
        CatalogUpdateRun::Request request;
        request.url = service.redirect();
        request.product = "P";
        request.productVersion = "1";
        request.retries = retries;
        request.firstPause = std::chrono::milliseconds(1);
        CatalogUpdateRun update(request);
        SweepHost object(update.swapper());
        QSignalSpy finished(&update, &CatalogUpdateRun::finished);
        update.start(object);
        EXPECT_TRUE(finished.wait(kTimeoutMilliseconds));
        EXPECT_EQ(1, object.closings);
        return update.finish(object.closing, host.root());
    }

    /// The number of installed catalogs that differ from the service.
    std::size_t missing() const
    {
        std::size_t count = 0;
        for (const auto& [name, bytes] : wanted)
            count += test::readFile(folder.file("root/" + name)) == bytes ? 0 : 1;
        return count;
    }
};

constexpr std::chrono::milliseconds kDistances[] = {std::chrono::milliseconds(0),
                                                    std::chrono::milliseconds(7)};
constexpr int kLimits[] = {1, 4, 20};
constexpr int kRetries[] = {0, 3};

/// The response time of the service, the number of retries, and the limit of parallel requests.
struct Way
{
    explicit Way(std::size_t cell)
        : distance(kDistances[cell % 2]), retries(kRetries[cell / 2 % 2]), limit(kLimits[cell / 4 % 3])
    {
    }
    std::string text() const
    {
        return std::to_string(distance.count()) + " ms, retries " + std::to_string(retries) + ", " +
               std::to_string(limit) + " at once";
    }

    std::chrono::milliseconds distance;
    int retries;
    int limit;
};

/// The kinds of request that the service breaks.
const char* const kKinds[] = {"redirect", "index", "header", "body", "archive header", "archive"};

bool isOf(const std::string& kind, const FaultRequest& request)
{
    const auto asksFor = [&](const char* name) {
        return request.target.find(std::string("library=") + name + "&") != std::string::npos;
    };
    const bool isHeader = request.method == "HEAD";
    if (kind == "redirect")
        return request.path() == "/redirect";
    if (kind == "index")
        return asksFor(kIndex);
    const bool isArchive = kind.find("archive") == 0;
    return asksFor(isArchive ? "Lamps.orvlibz" : "Doors.orvlib") &&
           isHeader == (kind.find("header") != std::string::npos);
}

/// A service with 300 catalogs that never replies to one kind of request.
class CancelledTruth : public TruthSweep
{
protected:
    CancelledTruth()
    {
        std::string index = "Doors.orvlib\n";
        for (int number = 0; number < 300; ++number) {
            const std::string name = "More " + std::to_string(number) + ".orvlib";
            index += name + "\n";
            service.offer(name, "content of " + name);
        }
        service.offer(kIndex, index);
        writeOld();
    }

    ~CancelledTruth() override { Curl::setConnectionLimit(16); }

    std::size_t asked() { return service.server().requests().size(); }

    /// Cancels an update while it waits for a reply to a request of this kind.
    /// @param pause delays every other reply
    /// @return how many requests arrived after the cancel
    std::size_t requestsAfterCancel(const std::string& kind, std::chrono::milliseconds pause)
    {
        std::atomic<bool> isReached{false};
        service.spoilWith([&](const FaultReply& sound, const FaultRequest& request) {
            if (!isOf(kind, request))
                return FaultReply(sound).pauseAt(0, pause);
            isReached = true;
            return FaultReply::silence();
        });
        CatalogUpdateRun::Request request;
        request.url = service.redirect();
        CatalogUpdateRun update(request);
        SweepHost object(update.swapper());
        QSignalSpy finished(&update, &CatalogUpdateRun::finished);
        update.start(object);
        QElapsedTimer timer;
        for (timer.start(); !isReached && timer.elapsed() < kTimeoutMilliseconds;)
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        EXPECT_TRUE(isReached);
        const std::size_t before = asked();
        timer.start();
        CatalogUpdateRun::cancel();
        EXPECT_TRUE(finished.wait(kTimeoutMilliseconds));
        EXPECT_LT(timer.elapsed(), 2000);
        EXPECT_EQ(UpdateOutcome::Kind::Cancelled, update.finish(object.closing, host.root()).kind);
        service.spoilWith(nullptr);
        return asked() - before;
    }
};

} // namespace

TEST_F(TruthSweep, noRunEndsWellWithAnOldCatalogWhateverTheServiceDoes)
{
    const std::vector<Behaviour> all = behaviours();
    const std::vector<FaultReply> refused = refusals();
    EXPECT_GE(all.size(), 80U);
    constexpr std::size_t kKindCount = std::size(kKinds);
    constexpr std::size_t kWays = std::size(kDistances) * std::size(kLimits) * std::size(kRetries);
    for (const std::size_t cell : test::sweepCells(all.size() * kKindCount * kWays, 131)) {
        const Behaviour& behaviour = all[cell % all.size()];
        const std::string kind = kKinds[cell / all.size() % kKindCount];
        const Way way(cell / all.size() / kKindCount);
        // If the service says that it does not have a bonus catalog, that is not a failure.
        if (kind == "archive header" && behaviour.name == std::string("status 404"))
            continue;
        SCOPED_TRACE(kind + ": " + behaviour.name + ", " + way.text());
        writeOld();
        std::atomic<int> spoilt{0};
        service.spoilWith([&](const FaultReply& sound, const FaultRequest& request) {
            if (!isOf(kind, request))
                return FaultReply(sound).pauseAt(0, way.distance);
            ++spoilt;
            return behaviour.spoil(sound, request);
        });
        service.server().limitRequests(way.limit, refused[cell % refused.size()]);
        expectTruth(way.retries);
        EXPECT_TRUE(spoilt > 0 || service.server().refusedCount() > 0);
        expectHealed();
        if (HasFailure())
            return;
    }
}

TEST_F(TruthSweep, noRunEndsWellWithAnOldCatalogWhateverTheLimitOfRequests)
{
    offerMore(24);
    Curl::setConnectionLimit(40);
    const std::vector<FaultReply> refused = refusals();
    constexpr std::size_t kWays = std::size(kDistances) * std::size(kLimits) * std::size(kRetries);
    for (const std::size_t cell : test::sweepCells(kWays * refused.size(), 13)) {
        const Way way(cell % kWays);
        SCOPED_TRACE(way.text() + ", refusal " + std::to_string(cell / kWays));
        writeOld();
        service.spoilWith([&](const FaultReply& sound, const FaultRequest&) {
            return FaultReply(sound).pauseAt(0, way.distance);
        });
        service.server().limitRequests(way.limit, refused[cell / kWays]);
        expectTruth(way.retries);
        expectHealed();
    }
    Curl::setConnectionLimit(16);
    EXPECT_GT(service.server().refusedCount(), 0);
}

TEST_F(CancelledTruth, nothingMoreIsAskedInTurn)
{
    Curl::setConnectionLimit(1);
    for (const std::string kind : {"redirect", "index", "header", "body"}) {
        SCOPED_TRACE(kind);
        EXPECT_LE(requestsAfterCancel(kind, std::chrono::milliseconds(0)), 1U);
    }
}

TEST_F(CancelledTruth, requestsAheadEndWithTheRun)
{
    for (const std::string kind : {"redirect", "index", "header", "body"}) {
        SCOPED_TRACE(kind);
        requestsAfterCancel(kind, std::chrono::milliseconds(20));
        std::this_thread::sleep_for(std::chrono::milliseconds(100)); // lets the last requests arrive
        const std::size_t before = asked();
        std::this_thread::sleep_for(std::chrono::milliseconds(200));
        EXPECT_EQ(before, asked());
    }
}

#include "TruthSweepTest.moc"
