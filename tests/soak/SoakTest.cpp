// A long-running host: thousands of updates in one process, with about every tenth request failing.
#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>

#include <gtest/gtest.h>
#include <malloc.h>
#include <unistd.h>

#include "OrvLibrary/host/impl/http/CurlService_p.h"
#include "tests/catalog/UpdateRun.h"
#include "tests/soak/SoakService.h"
#include "tests/support/ScopedHost.h"
#include "tests/support/SlotRecorder.h"

namespace fs = std::filesystem;

namespace {

constexpr int kRunsOfTheTest = 100;
constexpr long kMostGrowth = 2 * 1024 * 1024;

int runsWanted()
{
    const char* const runs = std::getenv("ORV_SOAK_RUNS");
    return runs ? std::max(std::atoi(runs), 10) : kRunsOfTheTest;
}

/// The resident memory of this process in bytes, after the allocator has returned unused memory.
long residentBytes()
{
    malloc_trim(0);
    long pages = 0;
    long resident = 0;
    std::ifstream("/proc/self/statm") >> pages >> resident;
    return resident * sysconf(_SC_PAGESIZE);
}

std::ptrdiff_t countEntries(const char* folder)
{
    const fs::directory_iterator entries(folder);
    return std::distance(begin(entries), end(entries));
}

class Soak : public testing::Test
{
protected:
    Soak()
    {
        Curl::install(&mCurl);
        // On a busy machine the service can look far away. A body that fails ahead of its turn is then
        // requested again, and its failure is not logged.
        mCurl.setConnectionLimit(1);
    }
    ~Soak() override { Curl::install(nullptr); }

    void run()
    {
        test::SlotRecorder recorder;
        test::UpdateArguments arguments;
        for (const char* name : {"core/Doors.orvlib", "core/Same.orvlib"})
            arguments.core.insert(mHost.folder().file(name));
        arguments.bonus = {mHost.folder().file("bonus/Lamps.orvlib")};
        arguments.manufacturer = {mHost.folder().file("manufacturer/Acme.orvlib")};
        arguments.redirect = mService.redirect();
        test::runUpdate(recorder, arguments);
        ASSERT_TRUE(recorder.closingData());
        EXPECT_EQ(recorder.closings(), 1u);
        mResult = recorder.closingData()->result;
        mHost.fileSearch().clear(); // it keeps every call, which must not count as growth
    }

    /// The number of lines about failures since the last call.
    std::size_t newLogLines()
    {
        std::ifstream log(mHost.folder().path() + "/user/errors.log");
        log.seekg(mLogSize);
        std::size_t count = 0;
        for (std::string line; std::getline(log, line);
             mLogSize += static_cast<std::streamoff>(line.size()) + 1)
            count += line.rfind("Failed ", 0) == 0 ? 1 : 0;
        return count;
    }

    /// All names below the root except the log, which the first failure creates, and the download folders,
    /// which downloads create.
    std::vector<std::string> names() const
    {
        std::vector<std::string> names;
        for (const std::string& name : test::listTree(mHost.folder().path())) {
            const bool isDownloadFolder = name.rfind("temp/", 0) == 0 && name.back() == '/';
            if (name != "user/errors.log" && !isDownloadFolder)
                names.push_back(name);
        }
        return names;
    }

    void expectContentOf(int version) const
    {
        const auto content = test::soakContent(version);
        const auto read = [this](const char* name) {
            return test::readFile(mHost.folder().path() + "/" + name);
        };
        EXPECT_TRUE(read("core/Doors.orvlib") == content.at("Doors.orvlib"));
        EXPECT_TRUE(read("core/T\xc3\xbcr 2.orvlib") == content.at("T\xc3\xbcr 2.orvlib"));
        EXPECT_TRUE(read("referenced/Textures.zip") == content.at("Textures.zip"));
    }

    test::SoakService mService; // created before any thread
    test::ScopedHost mHost;
    CurlService mCurl;
    int mResult = 0;

private:
    std::streamoff mLogSize = 0;
};

} // namespace

TEST_F(Soak, updatesWithFaultsLeaveNothingBehind)
{
    const int runs = runsWanted();
    const int warmUp = runs / 5;
    run();
    ASSERT_EQ(mResult, 2);
    const std::vector<std::string> sound = names();
    mService.setFaulty(true);

    long memory = 0;
    std::ptrdiff_t descriptors = 0;
    std::ptrdiff_t threads = 0;
    std::size_t lines = 0;
    int failed = 0;
    for (int number = 1; number <= runs; ++number) {
        mService.setVersion(number % 2);
        const std::size_t faults = mService.faults();
        ASSERT_NO_FATAL_FAILURE(run());
        const std::size_t newLines = newLogLines();
        ASSERT_EQ(newLines, mService.faults() - faults) << "run " << number;
        ASSERT_EQ(mResult, newLines > 0 ? 0 : 2) << "run " << number;
        ASSERT_EQ(names(), sound) << "run " << number;
        lines += newLines;
        failed += newLines > 0 ? 1 : 0;
        if (number == warmUp) {
            memory = residentBytes();
            descriptors = countEntries("/proc/self/fd");
            threads = countEntries("/proc/self/task");
        }
    }
    const long growth = residentBytes() - memory;
    EXPECT_LT(growth, kMostGrowth);
    EXPECT_EQ(countEntries("/proc/self/fd"), descriptors);
    EXPECT_EQ(countEntries("/proc/self/task"), threads);
    EXPECT_GT(failed, runs / 10);

    mService.setFaulty(false);
    mService.setVersion(1 - runs % 2);
    run();
    EXPECT_EQ(mResult, 2);
    expectContentOf(1 - runs % 2);
    std::cout << "soak: " << runs << " runs, " << mService.requests() << " requests, " << lines
              << " faults in " << failed << " runs, as many log lines; memory grew by " << growth / 1024
              << " KiB after run " << warmUp << ", " << descriptors << " descriptors and " << threads
              << " threads throughout\n";
}
