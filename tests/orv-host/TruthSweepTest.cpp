// A broken service disturbs one kind of request of an update. Whatever it does, no run ends well while a
// newer catalog of the service was not installed; and the next run, which nothing disturbs, installs
// everything. The tests take every fifth case; all of them where the environment variable ORV_SWEEP is
// "full".
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
#include "tests/support/ContentService.h"
#include "tests/support/SampleDatabase.h"

using LibraryCatalogUpdate::UpdateData;
using OrvHost::CatalogUpdateRun;
using OrvHost::UpdateOutcome;
using test::FaultReply;
using test::FaultRequest;

namespace {

constexpr int kTimeoutMilliseconds = 60'000;
const char* const kIndex = "Orv_Core_Content_Index.txt";

/// Chooses the cases that a test takes.
class Cut
{
public:
    bool takesNext() { return mIsFull || ++mCount % 5 == 0; }

private:
    bool mIsFull = qgetenv("ORV_SWEEP") == "full";
    std::size_t mCount = 0;
};

/// The smallest host object that an update can have.
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

/// A way in which a service is broken.
struct Behaviour
{
    const char* name;
    std::function<FaultReply(const FaultReply&, const FaultRequest&)> spoil;
};

const std::vector<std::string> kHtml = {"Content-Type: text/html"};

/// The sound reply with another header line, or another status line, in place of the one that begins with
/// `from`.
FaultReply withHead(const FaultReply& sound, const FaultRequest& request, const char* from,
                    const std::string& to)
{
    std::string bytes = sound.bytes(request.method);
    const std::size_t start = bytes.find(from);
    if (start != std::string::npos)
        bytes.replace(start, bytes.find("\r\n", start) + 2 - start, to);
    return FaultReply::raw(bytes).close();
}

std::vector<Behaviour> behaviours()
{
    using S = const FaultReply&;
    using R = const FaultRequest&;
    const std::string page = "<html>" + std::string(3000, ' ');
    return {
        {"closed without an answer", [](S, R) { return FaultReply::raw("").close(); }},
        {"reset without an answer", [](S, R) { return FaultReply::raw("").reset(); }},
        {"cut in the status line", [](S s, R) { return FaultReply(s).cutAt(9); }},
        {"cut in the headers", [](S s, R) { return FaultReply(s).cutAt(s.headSize() / 2); }},
        {"cut before the body", [](S s, R) { return FaultReply(s).cutAt(s.headSize()); }},
        {"cut in the body", [](S s, R) { return FaultReply(s).cutAt(s.headSize() + 900); }},
        {"reset in the body", [](S s, R) { return FaultReply(s).cutAt(s.headSize() + 900).reset(); }},
        {"length too large",
         [](S s, R r) { return withHead(s, r, "Content-Length", "Content-Length: 99999\r\n"); }},
        {"length too small",
         [](S s, R r) { return withHead(s, r, "Content-Length", "Content-Length: 30\r\n"); }},
        {"no length", [](S s, R r) { return withHead(s, r, "Content-Length", ""); }},
        {"length that is no number",
         [](S s, R r) { return withHead(s, r, "Content-Length", "Content-Length: x\r\n"); }},
        {"no tag", [](S s, R r) { return withHead(s, r, "ETag", ""); }},
        {"empty tag", [](S s, R r) { return withHead(s, r, "ETag", "ETag:\r\n"); }},
        {"another tag", [](S s, R r) { return withHead(s, r, "ETag", "ETag: \"other\"\r\n"); }},
        {"tag with a colon", [](S s, R r) { return withHead(s, r, "ETag", "ETag: \"a:b\"\r\n"); }},
        {"encoded",
         [](S s, R r) { return withHead(s, r, "ETag", "ETag: \"x\"\r\nContent-Encoding: gzip\r\n"); }},
        {"web page", [page](S, R) { return FaultReply::ok(page, kHtml); }},
        {"web page without a type", [page](S, R) { return FaultReply::ok(page); }},
        {"nothing", [](S, R) { return FaultReply::ok(""); }},
        {"zeros",
         [](S s, R r) {
             std::string bytes = s.bytes(r.method);
             for (std::size_t at = s.headSize(); at < bytes.size(); ++at)
                 bytes[at] = '\0';
             return FaultReply::raw(bytes).close();
         }},
        {"status 206", [](S s, R r) { return withHead(s, r, "HTTP/1.1", "HTTP/1.1 206 Part\r\n"); }},
        {"status 403", [page](S, R) { return FaultReply::status(403, page, kHtml); }},
        {"status 429", [](S, R) { return FaultReply::status(429); }},
        {"status 500", [page](S, R) { return FaultReply::status(500, page, kHtml); }},
        {"status 503", [](S, R) { return FaultReply::status(503, "", {"Retry-After: 0"}); }},
        {"status 503 for long", [](S, R) { return FaultReply::status(503, "", {"Retry-After: 3600"}); }},
        {"redirect in a circle", [](S, R r) { return FaultReply::redirect(r.target); }},
        {"redirect to nowhere", [](S, R) { return FaultReply::redirect("http://127.0.0.1:1/x?"); }},
        {"redirect to a page", [](S, R) { return FaultReply::redirect("/login"); }},
        {"no redirect", [](S, R) { return FaultReply::status(404, "Not here."); }},
    };
}

/// A root with old catalogs, and a service with newer ones.
class TruthSweep : public test::HostedTest
{
protected:
    TruthSweep()
    {
        service.offer(kIndex, "Doors.orvlib\nRoofs.orvlib\n");
        offer("Doors.orvlib", test::sampleDatabase("new doors", 3000));
        offer("Roofs.orvlib", test::sampleDatabase("new roofs", 3000));
        test::ArchiveBuilder archive;
        archive.add("Lamps.orvlib", test::sampleDatabase(test::sampleBytes(3000, 8)));
        service.offer("Lamps.orvlibz", archive.bytes());
        wanted["bonus/Lamps.orvlib"] = test::sampleDatabase(test::sampleBytes(3000, 8));
        service.server().on("/login", FaultReply::ok("<html>Please sign in.</html>", kHtml));
    }

    void offer(const std::string& name, const std::string& bytes)
    {
        service.offer(name, bytes);
        wanted["core/" + name] = bytes;
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

    /// Fails the test when the run reports success and an old catalog is still there, or a failure without
    /// its cause.
    void expectTruth(int retries)
    {
        const UpdateOutcome outcome = run(retries);
        EXPECT_TRUE(!outcome.isGood() || missing() == 0)
            << outcome.name() << " with " << missing() << " old catalogs";
        EXPECT_TRUE(outcome.isGood() || !outcome.failed.empty()) << outcome.error;
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
    std::map<std::string, std::string> wanted; ///< path below the root to contents

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

    /// How many catalogs are not as the service has them.
    std::size_t missing() const
    {
        std::size_t count = 0;
        for (const auto& [name, bytes] : wanted)
            count += test::readFile(folder.file("root/" + name)) == bytes ? 0 : 1;
        return count;
    }
};

/// The kinds of request that are disturbed.
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

/// A service with 300 catalogs that never answers one kind of request.
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

    /// Cancels an update while it waits for an answer of that kind.
    /// @param pause before every other answer
    /// @return how many requests came after the cancel
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
    Cut cut;
    for (const Behaviour& behaviour : all) {
        for (const std::string kind : kKinds) {
            for (const int retries : {0, 3}) {
                if (!cut.takesNext())
                    continue;
                // A service that says it has no such bonus catalog is believed.
                if (kind == "archive header" && behaviour.name == std::string("no redirect"))
                    continue;
                SCOPED_TRACE(kind + ": " + behaviour.name + ", retries " + std::to_string(retries));
                writeOld();
                std::atomic<int> spoilt{0};
                service.spoilWith([&](const FaultReply& sound, const FaultRequest& request) {
                    if (!isOf(kind, request))
                        return sound;
                    ++spoilt;
                    return behaviour.spoil(sound, request);
                });
                expectTruth(retries);
                EXPECT_GT(spoilt, 0);
                expectHealed();
                if (HasFailure())
                    return;
            }
        }
    }
}

TEST_F(TruthSweep, noRunEndsWellWithAnOldCatalogWhateverTheLimitOfRequests)
{
    for (int number = 0; number < 24; ++number)
        offer("More " + std::to_string(number) + ".orvlib", test::sampleDatabase("more", 2000));
    std::string index;
    for (const auto& [name, bytes] : wanted)
        index += name.find("core/") == 0 ? name.substr(5) + "\n" : "";
    service.offer(kIndex, index);
    const std::vector<FaultReply> refusals = {FaultReply::status(429),
                                              FaultReply::status(503, "", {"Retry-After: 0"}),
                                              FaultReply::raw("").reset()};
    Cut cut;
    for (const int milliseconds : {0, 6}) {
        for (const int limit : {1, 4, 20}) {
            for (std::size_t refusal = 0; refusal < refusals.size(); ++refusal) {
                if (!cut.takesNext())
                    continue;
                SCOPED_TRACE(std::to_string(milliseconds) + " ms, " + std::to_string(limit) +
                             " at once, refusal " + std::to_string(refusal));
                writeOld();
                service.spoilWith([&](const FaultReply& sound, const FaultRequest&) {
                    return FaultReply(sound).pauseAt(0, std::chrono::milliseconds(milliseconds));
                });
                service.server().limitRequests(limit, refusals[refusal]);
                expectTruth(limit == 4 ? 0 : 3);
                expectHealed();
            }
        }
    }
}

TEST_F(CancelledTruth, nothingMoreIsAskedInTurn)
{
    Curl::setConnectionLimit(1);
    for (const std::string kind : {"redirect", "index", "header", "body"}) {
        SCOPED_TRACE(kind);
        EXPECT_LE(requestsAfterCancel(kind, std::chrono::milliseconds(0)), 1U);
    }
}

TEST_F(CancelledTruth, whatWasAskedAheadEndsWithTheRun)
{
    for (const std::string kind : {"redirect", "index", "header", "body"}) {
        SCOPED_TRACE(kind);
        requestsAfterCancel(kind, std::chrono::milliseconds(20));
        std::this_thread::sleep_for(std::chrono::milliseconds(100)); // for what was sent just before the end
        const std::size_t before = asked();
        std::this_thread::sleep_for(std::chrono::milliseconds(200));
        EXPECT_EQ(before, asked());
    }
}

#include "TruthSweepTest.moc"
