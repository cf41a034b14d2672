// Several streams on one file: which of them wait, how long, and what content each reads.
#include <chrono>
#include <memory>
#include <thread>

#include "OrvLibrary/host/FileUtils.h"
#include "OrvLibrary/host/impl/files/FileHandle_p.h"
#include "tests/host/files/LockingFStreamFixture.h"
#include "tests/support/ChildProcess.h"

namespace {

using test::kAppend;
using test::kRead;
using test::kWrite;
using test::Names;

using LockingFStreamLock = test::LockingFStreamFixture;

TEST_F(LockingFStreamLock, readersShareTheLock)
{
    const fileString file = mFolder.write("data", "x");
    EXPECT_TRUE(opens(file, kRead));
    const LockingFStream first(file, kRead);
    EXPECT_TRUE(opens(file, kRead));
}

/// How many seconds a stream waits for a lock before its opening fails; 0 if it opens.
double refusedAfter(const fileString& file, std::ios_base::openmode mode)
{
    const auto start = std::chrono::steady_clock::now();
    const LockingFStream stream(file, mode);
    const std::chrono::duration<double> passed = std::chrono::steady_clock::now() - start;
    return stream.is_open() ? 0 : passed.count();
}

TEST_F(LockingFStreamLock, aLockThatOthersHoldIsWaitedForFiveSecondsAtMost)
{
    const fileString read = mFolder.write("read", "x");
    const fileString written = mFolder.write("written", "x");
    const fileString fresh = mFolder.file("fresh");
    const fileString elsewhere = mFolder.write("elsewhere", "x");
    const LockingFStream reader(read, kRead);
    const LockingFStream writer(written, kWrite);
    const LockingFStream freshWriter(fresh, kWrite);
    const test::WaitingChild child([&] { new LockingFStream(elsewhere, kWrite); });

    const std::pair<fileString, std::ios_base::openmode> cases[] = {
        {read, kWrite},     {read, kAppend}, {written, kRead},   {written, kWrite},
        {written, kAppend}, {fresh, kWrite}, {elsewhere, kRead}, {elsewhere, kWrite}};
    std::vector<double> seconds(std::size(cases));
    std::vector<std::thread> threads;
    for (std::size_t i = 0; i < std::size(cases); ++i)
        threads.emplace_back([&, i] { seconds[i] = refusedAfter(cases[i].first, cases[i].second); });
    for (std::thread& thread : threads)
        thread.join();
    for (std::size_t i = 0; i < std::size(cases); ++i) {
        EXPECT_GE(seconds[i], 5.0) << i;
        EXPECT_LT(seconds[i], 10.0) << i;
    }
}

TEST_F(LockingFStreamLock, aWriterThatWaitedLocksTheFileThatReplacedTheOldOne)
{
    const fileString file = mFolder.write("data", "old");
    auto first = std::make_unique<LockingFStream>(file, kWrite);
    *first << "first";
    std::unique_ptr<LockingFStream> second;
    std::thread thread([&] { second = std::make_unique<LockingFStream>(file, kWrite); });
    first->close();
    thread.join();
    ASSERT_TRUE(second->is_open());
    EXPECT_EQ(test::readFile(file), "first");
    EXPECT_TRUE(FileUtils::isPathWriteLocked(file)) << "the new file is locked, not the one that is gone";
    *second << "second";
    second->close();
    EXPECT_EQ(test::readFile(file), "second");
    EXPECT_EQ(list(), Names{"data"});
}

TEST_F(LockingFStreamLock, readersSeeWholeContentsWhileWritersReplaceThem)
{
    constexpr int kRounds = 60;
    const fileString file = mFolder.file("data");
    writeAll(file, std::string(50000, 'a'));
    std::vector<std::thread> threads;
    for (const char letter : {'b', 'c'})
        threads.emplace_back([&, letter] {
            for (int i = 0; i < kRounds; ++i)
                writeAll(file, std::string(static_cast<std::size_t>(50000 + i), letter));
        });
    for (int reader = 0; reader < 2; ++reader)
        threads.emplace_back([&] {
            for (int i = 0; i < kRounds; ++i) {
                const std::string content = readAll(file);
                EXPECT_GE(content.size(), 50000u);
                EXPECT_EQ(content.find_first_not_of(content.front()), std::string::npos);
            }
        });
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(list(), Names{"data"});
}

TEST_F(LockingFStreamLock, twoWritersOfANewFileBothSucceedOneAfterTheOther)
{
    for (int round = 0; round < 50; ++round) {
        const fileString file = mFolder.file("data" + std::to_string(round));
        std::thread thread([&] { writeAll(file, "same length"); });
        writeAll(file, "SAME LENGTH");
        thread.join();
        const std::string content = test::readFile(file);
        EXPECT_TRUE(content == "same length" || content == "SAME LENGTH") << content;
    }
    EXPECT_EQ(list().size(), 50u);
}

TEST_F(LockingFStreamLock, aFileThatWasRemovedBeforeItIsOpenedIsNoReadOnlyOne)
{
    const fileString file = mFolder.write("data", "x");
    const auto status = host::fileStatus(file.toNativeString());
    ASSERT_TRUE(status);
    FileUtils::removePath(file, 0);
    EXPECT_TRUE(host::mayWrite(file.toNativeString(), *status));
}

} // namespace
