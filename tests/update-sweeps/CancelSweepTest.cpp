// Cancels an update, or destroys the host object, at every point of an update.
#include <atomic>
#include <memory>
#include <thread>
#include <vector>

#include <QObject>

#include "OrvLibrary/catalog/CatalogEvents_p.h"
#include "tests/support/ForwardingServices.h"
#include "tests/update-sweeps/DistanceSweep.h"

using LibraryCatalogUpdate::LibraryCatalogUpdater;

namespace {

/// Cancels at one of the calls of the progress functions, counted over all downloads.
class CancellingCurl : public test::ForwardingCurl
{
public:
    CancellingCurl(Curl& behind, test::ServiceCalls& calls, std::size_t cancelAt)
        : ForwardingCurl(behind, calls), mCancelAt(cancelAt)
    {
    }

    using ForwardingCurl::download_to_location;
    bool download_to_location(const std::string& url, const fileString& target,
                              const std::vector<std::string>& headerLines, void* context,
                              ProgressFunction progress, std::string& reason, int& errorNumber) override
    {
        mContext = context;
        mProgress = progress;
        return ForwardingCurl::download_to_location(url, target, headerLines, this, watch, reason,
                                                    errorNumber);
    }

    std::size_t progressCalls() const { return mCalls; }

private:
    static int watch(void* self, double total, double downloaded, double uploadTotal, double uploaded)
    {
        auto& curl = *static_cast<CancellingCurl*>(self);
        if (++curl.mCalls == curl.mCancelAt)
            LibraryCatalogUpdater::killDownload();
        return curl.mProgress(curl.mContext, total, downloaded, uploadTotal, uploaded);
    }

    const std::size_t mCancelAt;
    std::size_t mCalls = 0;
    void* mContext = nullptr;
    ProgressFunction mProgress = nullptr;
};

/// Runs an update and cancels it at the progress call with this number; 0 for no cancel.
/// @return the number of progress calls
std::size_t runCancelledAtProgress(test::UpdateWorld& world, std::size_t call)
{
    std::size_t calls = 0;
    world.run([&] {
        test::ServiceCalls counter;
        CancellingCurl curl(Curl::get(), counter, call);
        Curl* const former = Curl::install(&curl);
        test::runUpdate(world.updater());
        Curl::install(former);
        calls = curl.progressCalls();
    });
    return calls;
}

void runCancelledAtServiceCall(test::UpdateWorld& world, std::size_t call)
{
    world.run([&] {
        test::ForwardingServices services;
        services.calls().onCall([call](std::size_t number) {
            if (number == call)
                LibraryCatalogUpdater::killDownload();
        });
        test::runUpdate(world.updater());
    });
}

std::size_t countServiceCalls(test::UpdateWorld& world)
{
    std::size_t calls = 0;
    world.run([&] {
        test::ForwardingServices services;
        test::runUpdate(world.updater());
        calls = services.calls().total();
    });
    return calls;
}

class SmallHost : public QObject
{
    Q_OBJECT

public Q_SLOTS:
    void onUpdateInGauge() {}
};

/// Destroys the host object of a world on the thread that made this object. A thread of the server invokes it
/// by its name, because Qt then makes and deletes what it queues: the thread sanitizer knows such calls.
class HostEnd : public QObject
{
    Q_OBJECT

public:
    explicit HostEnd(test::UpdateWorld& world) : mWorld(world) {}

public Q_SLOTS:
    void destroyHost() { mWorld.recorder().reset(); }

private:
    test::UpdateWorld& mWorld;
};

class CancelSweep : public test::DistanceSweep
{
protected:
    /// Expects the guarantees after a cancelled run.
    void expectCancelled()
    {
        mWorld.expectNothingLost();
        EXPECT_EQ(mWorld.recorder()->count("onClose"), 1u);
        mWorld.expectConverges();
    }
};

class HostSweep : public test::DistanceSweep
{
};

INSTANTIATE_TEST_SUITE_P(Service, CancelSweep, testing::Values(test::kNear, test::kFar), test::distanceName);
INSTANTIATE_TEST_SUITE_P(Service, HostSweep, testing::Values(test::kNear, test::kFar), test::distanceName);

} // namespace

TEST_P(CancelSweep, atEveryCallOfAHostService)
{
    reset();
    const std::size_t calls = countServiceCalls(mWorld);
    for (const std::size_t cell : test::sweepCells(calls, 50)) {
        SCOPED_TRACE("service call " + std::to_string(cell + 1));
        reset();
        runCancelledAtServiceCall(mWorld, cell + 1);
        expectCancelled();
    }
}

TEST_P(CancelSweep, atEveryProgressCall)
{
    reset();
    const std::size_t calls = runCancelledAtProgress(mWorld, 0);
    EXPECT_GE(calls, 4u) << "one for each download at least";
    for (std::size_t call = 1; call <= calls; ++call) {
        SCOPED_TRACE("progress call " + std::to_string(call));
        reset();
        runCancelledAtProgress(mWorld, call);
        expectCancelled();
    }
}

TEST_P(CancelSweep, atEveryRequest)
{
    reset();
    mWorld.onRequest(nullptr);
    mWorld.run();
    const std::size_t requests = mWorld.requestCount();
    EXPECT_GE(requests, 12u);
    for (std::size_t request = 1; request <= requests; ++request) {
        SCOPED_TRACE("request " + std::to_string(request));
        reset();
        mWorld.onRequest([request](std::size_t number) {
            if (number == request)
                LibraryCatalogUpdater::killDownload();
        });
        mWorld.run();
        expectCancelled();
    }
}

TEST_P(CancelSweep, atEveryInvocation)
{
    reset();
    mWorld.run();
    const std::size_t invocations = mWorld.recorder()->events().size();
    for (std::size_t invocation = 1; invocation <= invocations; ++invocation) {
        SCOPED_TRACE("invocation " + std::to_string(invocation));
        reset();
        mWorld.recorder()->onEvent = [invocation](std::size_t number) {
            if (number == invocation)
                LibraryCatalogUpdater::killDownload();
        };
        mWorld.run();
        // The run may end before the invocation is delivered, so the outcome is not checked.
        mWorld.expectNothingLost();
        mWorld.expectConverges();
    }
}

TEST_P(HostSweep, isDestroyedAtEveryInvocation)
{
    reset();
    mWorld.run();
    const std::size_t invocations = mWorld.recorder()->events().size();
    for (std::size_t invocation = 1; invocation <= invocations; ++invocation) {
        SCOPED_TRACE("invocation " + std::to_string(invocation));
        reset();
        mWorld.recorder()->onEvent = [this, invocation](std::size_t number) {
            if (number == invocation)
                mWorld.recorder().reset();
        };
        mWorld.run();
        EXPECT_EQ(mWorld.recorder(), nullptr);
        mWorld.expectNothingLost();
        mWorld.recoverLeftOvers();
        mWorld.expectConverges();
    }
}

TEST_P(HostSweep, isDestroyedWhileAnyRequestGoesOn)
{
    reset();
    mWorld.onRequest(nullptr);
    mWorld.run();
    const std::size_t requests = mWorld.requestCount();
    HostEnd end(mWorld);
    for (std::size_t request = 1; request <= requests; ++request) {
        SCOPED_TRACE("request " + std::to_string(request));
        reset();
        mWorld.onRequest([&end, request](std::size_t number) {
            if (number == request)
                QMetaObject::invokeMethod(&end, "destroyHost", Qt::QueuedConnection);
        });
        mWorld.run();
        mWorld.expectNothingLost();
        mWorld.recoverLeftOvers();
        mWorld.expectConverges();
    }
}

TEST(HostRaceSweep, theHostDiesWhileTheWorkerSends)
{
    const test::ResourceGuard guard;
    const int rounds = test::isFullSweep() ? 100'000 : 5'000;
    std::atomic<LibraryCatalogUpdate::CatalogEvents*> current{nullptr};
    std::atomic<bool> ended{false};
    std::thread sender([&] {
        while (!ended) {
            LibraryCatalogUpdate::CatalogEvents* const events = current.exchange(nullptr);
            for (int count = 0; events && count < 20; ++count)
                events->updateInGauge();
        }
    });
    std::vector<std::shared_ptr<LibraryCatalogUpdate::CatalogEvents>> kept;
    for (int round = 0; round < rounds; ++round) {
        auto host = std::make_unique<SmallHost>();
        kept.push_back(LibraryCatalogUpdate::CatalogEvents::watch(*host));
        current = kept.back().get();
        while (current && round % 4 == 0)
            std::this_thread::yield();
        host.reset();
    }
    ended = true;
    sender.join();
}

#include "CancelSweepTest.moc"
