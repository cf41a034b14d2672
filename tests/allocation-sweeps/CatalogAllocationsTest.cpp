// Failing allocations in those parts of an update that the sweep over a whole update may skip.
#include <cstdio>
#include <optional>

#include <QCoreApplication>
#include <gtest/gtest.h>

#include "OrvLibrary/catalog/CatalogDownload_p.h"
#include "OrvLibrary/catalog/CatalogEvents_p.h"
#include "OrvLibrary/catalog/CatalogHashesAhead_p.h"
#include "OrvLibrary/catalog/CatalogUpdaterState_p.h"
#include "OrvLibrary/host/SHA1.h"
#include "tests/allocation-sweeps/AllocationPlan.h"
#include "tests/catalog/CatalogTest.h"
#include "tests/support/ForwardingServices.h"
#include "tests/support/NoMoreThreads.h"

using namespace LibraryCatalogUpdate;
using test::AllocationPlan;
using test::CountedAllocations;

namespace {

/// Core-only runs. Allocations count from a given call of a host service on.
class CatalogAllocations : public test::CatalogTest
{
protected:
    CatalogAllocations() { mArguments.coreOnly = true; }

    /// Restores the state before the first run.
    void startAnew()
    {
        mRecorder = std::make_unique<test::SlotRecorder>();
        mCurl.requests.clear();
        mCurl.requestHeaders.clear();
        mArguments.core.clear();
        for (const char* name : {"DoorsOfAllKinds", "WindowsOfAllKinds", "LampsOfAllKinds"}) {
            const std::string file = name + std::string(".orvlib");
            mArguments.core.insert(installed("core/" + file, name));
            serve(file, mServed, test::sha1Of(mServed.empty() ? name : mServed));
        }
        for (const char* file : {"core/catalog_hash.txt", "user/errors.log"})
            std::remove(path(file).toNativeString().c_str());
        mServices.calls().reset();
    }

    /// The number of the call of a host service that is call number `times` of this operation in a run.
    std::size_t callOf(const std::string& operation, std::size_t times)
    {
        const std::vector<std::string> operations = mServices.calls().operations();
        for (std::size_t call = 0; call < operations.size(); ++call) {
            if (operations[call] == operation && --times == 0)
                return call + 1;
        }
        ADD_FAILURE() << "no such call";
        return 0;
    }

    /// Runs an update whose allocations count from one call to another, or to the end of the run.
    /// @return whether the failing allocation happened
    bool runWithout(std::size_t failing, std::size_t from, std::size_t to = 0)
    {
        startAnew();
        std::optional<CountedAllocations> counted;
        mServices.calls().onCall([&](std::size_t call) {
            if (call == from)
                counted.emplace();
            else if (call == to)
                counted.reset();
        });
        const AllocationPlan plan(failing);
        run();
        return plan.hasFailed();
    }

    test::ForwardingServices mServices;
    std::string mServed; ///< the content of each catalog on the service; empty: the installed content
};

} // namespace

TEST_F(CatalogAllocations, theListOfFilesToHashIsNoCondition)
{
    startAnew();
    run();
    ASSERT_EQ(result(), kResultCurrent);
    const auto headers = mCurl.requestHeaders;
    const std::size_t from = callOf("StringTable::text", 2); // everything is loaded before the list is made
    std::size_t harmless = 0;
    for (std::size_t failing = 1; runWithout(failing, from, from + 1); ++failing) {
        SCOPED_TRACE(failing);
        EXPECT_EQ(mRecorder->closings(), 1u);
        EXPECT_TRUE(result() == kResultCurrent || result() == kResultCoreFailed) << result();
        if (result() != kResultCurrent)
            continue;
        EXPECT_EQ(mCurl.requestHeaders, headers) << "the hashes are sent";
        ++harmless;
    }
    EXPECT_EQ(result(), kResultCurrent);
    EXPECT_GT(harmless, 2 * mArguments.core.size()) << "each file's path and name";
}

TEST_F(CatalogAllocations, theEndIsToldWithoutTheNamesWhereThereIsNoMemoryForThem)
{
    mServed = std::string(5000, 'n');
    startAnew();
    run();
    ASSERT_TRUE(mRecorder->closingData());
    const UpdateData whole = *mRecorder->closingData();
    ASSERT_EQ(whole.result, kResultUpdated);
    ASSERT_EQ(whole.updatedCatalogs.size(), 3u);
    const std::size_t from = callOf("PrefSet::setPref", 1); // the last call of a run
    std::size_t nameless = 0;
    for (std::size_t failing = 1; runWithout(failing, from); ++failing) {
        SCOPED_TRACE(failing);
        EXPECT_EQ(mRecorder->closings(), 1u);
        ASSERT_TRUE(mRecorder->closingData());
        const UpdateData data = *mRecorder->closingData();
        EXPECT_EQ(data.result, logText().empty() ? kResultUpdated : kResultCoreFailed);
        EXPECT_EQ(data.messageCode, whole.messageCode);
        if (data.updatedCatalogs.empty())
            ++nameless;
        else
            EXPECT_EQ(data.updatedCatalogs, whole.updatedCatalogs);
    }
    EXPECT_EQ(mRecorder->closingData()->updatedCatalogs, whole.updatedCatalogs);
    EXPECT_GE(nameless, whole.updatedCatalogs.size());
}

TEST_F(CatalogAllocations, everyFileHasItsHashOrItsCallerIsTold)
{
    std::vector<fileString> files;
    std::vector<std::string> expected;
    for (int number = 0; number < 4; ++number) {
        files.push_back(installed("core/" + std::to_string(number) + ".orvlib", std::to_string(number)));
        expected.push_back(SHA1::fileContentsToSHA1Hex(files.back()));
    }
    const test::NoMoreThreads none; // keeps all allocations on this thread
    std::size_t untold = 0;
    bool hasFailed = true;
    for (std::size_t failing = 1; hasFailed; ++failing) {
        SCOPED_TRACE(failing);
        std::vector<fileString> list = files;
        std::vector<std::string> hashes(files.size());
        bool isTold = false;
        const AllocationPlan plan(failing);
        {
            const CountedAllocations counted;
            CatalogHashesAhead ahead(std::move(list));
            for (std::size_t at = 0; at < files.size();) {
                try {
                    hashes[at] = ahead.hashOf(files[at]);
                    ++at;
                } catch (const std::bad_alloc&) {
                    isTold = true;
                }
            }
        }
        hasFailed = plan.hasFailed();
        EXPECT_EQ(hashes, expected);
        untold += hasFailed && !isTold ? 1 : 0;
    }
    EXPECT_GE(untold, files.size()) << "a hash that failed ahead is made again";
}

TEST_F(CatalogAllocations, aGaugeThatMissesAStepEndsNoDownload)
{
    const std::shared_ptr<CatalogEvents> events = CatalogEvents::watch(*mRecorder);
    CatalogDownload download;
    download.events = events.get();
    total_kbytes_read = 0;
    bool hasFailed = true;
    std::size_t failing = 0;
    while (hasFailed) {
        progress_update_count = 501;
        int answer = 0;
        const AllocationPlan plan(++failing, AllocationPlan::Whose::Everybodys);
        {
            const CountedAllocations counted;
            answer = download_progress_callback(&download, 0, static_cast<double>(failing) * 1000, 0, 0);
        }
        hasFailed = plan.hasFailed();
        EXPECT_EQ(answer, 0);
        QCoreApplication::sendPostedEvents(mRecorder.get());
        EXPECT_EQ(mRecorder->count("onSetValueInGauge"), hasFailed ? 0u : 1u);
    }
    EXPECT_GT(failing, 1u);
    EXPECT_EQ(mRecorder->argumentsOf("onSetValueInGauge"), std::vector<std::string>{std::to_string(failing)});
}
