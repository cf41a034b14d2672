#include "OrvLibrary/IO/ErrorLog.h"

#include <chrono>
#include <ctime>
#include <locale>
#include <thread>

#include <boost/uuid/string_generator.hpp>
#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <pthread.h>
#include <sys/stat.h>

#include "OrvLibrary/IO/ErrorLog_p.h"
#include "OrvLibrary/host/FileUtils.h"
#include "OrvLibrary/host/LockingFStream.h"
#include "OrvLibrary/host/PathUtils.h"
#include "OrvLibrary/host/TimeUtils.h"
#include "tests/support/TempFolder.h"

using Library::ErrorLog;

namespace {

const std::string kThreadPattern = "Thread ID: 0x[0-9a-f]+\n";
const std::string kHeadPattern =
    "---\nTime: [0-9]{4}-[0-9]{2}-[0-9]{2} [0-9]{2}:[0-9]{2}:[0-9]{2}\n" + kThreadPattern + "Message: \\|\n";

class ThrowingPathUtils : public RootPathUtils
{
public:
    using RootPathUtils::RootPathUtils;
    fileString getUserLibraryDatabasePath() const override { throw std::runtime_error("no folders"); }
};

class ErrorLogTest : public testing::Test
{
protected:
    ErrorLogTest() : mPaths(fileString(mFolder.path())), mFormer(PathUtils::install(&mPaths))
    {
        mkdir((mFolder.path() + "/user").c_str(), 0755);
    }
    ~ErrorLogTest() override { PathUtils::install(mFormer); }

    fileString log() const { return mFolder.file("user/errors.log"); }

    /// The message of the only entry in the log. Checks the lines around it.
    std::string messageOfOnlyEntry() const
    {
        const std::string content = test::readFile(log());
        const std::size_t start = content.find("Message: |\n") + 11;
        EXPECT_THAT(content.substr(0, start), testing::MatchesRegex(kHeadPattern));
        EXPECT_THAT(content, testing::EndsWith("...\n"));
        return content.substr(start, content.size() - start - 4);
    }

    void setAge(std::time_t seconds) const
    {
        const timespec times[] = {{0, UTIME_NOW}, {std::time(nullptr) - seconds, 0}};
        ASSERT_EQ(utimensat(AT_FDCWD, log().toNativeString().c_str(), times, 0), 0);
    }

    /// Waits for the start of a second, so that the following statements run within one second.
    static void awaitFreshSecond()
    {
        const std::time_t now = std::time(nullptr);
        while (std::time(nullptr) == now)
            std::this_thread::yield();
    }

    test::TempFolder mFolder;
    RootPathUtils mPaths;
    PathUtils* mFormer;
};

TEST_F(ErrorLogTest, entryIsWrittenToTheByte)
{
    std::string before;
    std::string after;
    do { // repeat until both times agree
        FileUtils::removePath(log());
        before = Library::getTimeNowString();
        ErrorLog() << "Failed To Download File:  " << fileString("Doors.orvlib")
                   << "   Reason:  " << std::string("HTTP 503");
        after = Library::getTimeNowString();
    } while (before != after);
    std::ostringstream thread;
    thread.imbue(std::locale::classic());
    thread << reinterpret_cast<const void*>(pthread_self());
    EXPECT_EQ(test::readFile(log()), "---\nTime: " + before + "\nThread ID: " + thread.str() +
                                         "\nMessage: |\nFailed To Download File:  Doors.orvlib   Reason:  "
                                         "HTTP 503\n...\n");
}

TEST_F(ErrorLogTest, everyKindOfValueIsAppendedWithoutSeparator)
{
    const auto id = boost::uuids::string_generator()("0123ABCD-4567-89ab-cdef-0123456789AB");
    ErrorLog() << "a" << std::string("b") << -9223372036854775807LL << 18446744073709551615UL
               << marl::unicode::String(u8"\u00e4") << fileString("/x/\xFF") << id
               << static_cast<const char*>(nullptr) << "z";
    EXPECT_EQ(messageOfOnlyEntry(), std::string("ab-922337203685477580718446744073709551615") + u8"\u00e4" +
                                        "/x/\xFF" + "0123abcd-4567-89ab-cdef-0123456789abz\n");
}

TEST_F(ErrorLogTest, numbersAreWrittenInTheClassicLocale)
{
    struct Grouped : std::numpunct<char>
    {
        char do_thousands_sep() const override { return '.'; }
        std::string do_grouping() const override { return "\3"; }
    };
    const std::locale former = std::locale::global(std::locale(std::locale::classic(), new Grouped));
    ErrorLog() << 1234567LL << " " << 7654321UL;
    std::locale::global(former);
    EXPECT_EQ(messageOfOnlyEntry(), "1234567 7654321\n");
}

TEST_F(ErrorLogTest, textWithoutFinalLineBreakGainsOne)
{
    ErrorLog() << "abc";
    EXPECT_EQ(messageOfOnlyEntry(), "abc\n");
}

TEST_F(ErrorLogTest, finalLineBreakIsNotDoubled)
{
    ErrorLog() << "abc\n";
    EXPECT_EQ(messageOfOnlyEntry(), "abc\n");
}

TEST_F(ErrorLogTest, linesOfAMessageAreNotIndented)
{
    ErrorLog() << "first\nsecond\n\n";
    EXPECT_EQ(messageOfOnlyEntry(), "first\nsecond\n\n");
}

TEST_F(ErrorLogTest, aLineBreakAloneIsAnEntry)
{
    ErrorLog() << "\n";
    EXPECT_EQ(messageOfOnlyEntry(), "\n");
}

TEST_F(ErrorLogTest, emptyTextWritesNothing)
{
    ErrorLog() << "" << std::string() << marl::unicode::String() << fileString();
    {
        ErrorLog untouched;
    }
    EXPECT_FALSE(log().pathExists());
}

TEST_F(ErrorLogTest, nothingIsWrittenBeforeTheEndOfTheBlock)
{
    ErrorLog entry;
    entry << "abc";
    EXPECT_FALSE(log().pathExists());
}

TEST_F(ErrorLogTest, entriesFollowEachOther)
{
    ErrorLog() << "one";
    ErrorLog() << "two";
    EXPECT_THAT(test::readFile(log()),
                testing::MatchesRegex(kHeadPattern + "one\n\\.\\.\\.\n" + kHeadPattern + "two\n\\.\\.\\.\n"));
}

TEST_F(ErrorLogTest, fileIsInTheUserLibraryDatabaseFolder)
{
    EXPECT_EQ(ErrorLog::file(), log());
    const test::TempFolder other;
    RootPathUtils otherPaths((fileString(other.path())));
    PathUtils::install(&otherPaths);
    EXPECT_EQ(ErrorLog::file(), other.file("user/errors.log"));
    PathUtils::install(&mPaths);
}

TEST_F(ErrorLogTest, aLogOfExactlySevenDaysIsKept)
{
    test::writeFile(log().toNativeString(), "old\n");
    awaitFreshSecond();
    setAge(604800);
    ErrorLog::clear();
    EXPECT_EQ(test::readFile(log()), "old\n");
    ErrorLog() << "new";
    EXPECT_THAT(test::readFile(log()), testing::StartsWith("old\n---\n"));
}

TEST_F(ErrorLogTest, aLogOneSecondOlderGivesWayToTheNewEntry)
{
    test::writeFile(log().toNativeString(), "old\n");
    setAge(604801);
    ErrorLog() << "new";
    EXPECT_EQ(messageOfOnlyEntry(), "new\n");
}

TEST_F(ErrorLogTest, theAgeCheckRunsForAnEmptyEntryToo)
{
    test::writeFile(log().toNativeString(), "old\n");
    setAge(604801);
    {
        ErrorLog untouched;
    }
    EXPECT_FALSE(log().pathExists());
}

TEST_F(ErrorLogTest, aLogFromTheFutureIsKept)
{
    test::writeFile(log().toNativeString(), "old\n");
    setAge(-604900);
    ErrorLog::clear();
    EXPECT_TRUE(log().pathExists());
}

TEST_F(ErrorLogTest, aLogThatAnotherProcessMadeMeanwhileStays)
{
    test::writeFile(log().toNativeString(), "old");
    setAge(604801);
    auto other = std::make_unique<LockingFStream>(log(), std::ios_base::app);
    std::thread clearing([] { ErrorLog::clear(); });
    std::this_thread::sleep_for(std::chrono::milliseconds(100));
    EXPECT_TRUE(log().pathExists()) << "the other one has the lock";
    FileUtils::removePath(log());
    test::writeFile(log().toNativeString(), "fresh");
    other.reset();
    clearing.join();
    EXPECT_EQ(test::readFile(log()), "fresh");
}

TEST_F(ErrorLogTest, aStaleLogThatIsReadOnlyIsRemoved)
{
    test::writeFile(log().toNativeString(), "old");
    setAge(604801);
    ASSERT_EQ(chmod(log().toNativeString().c_str(), 0444), 0);
    ErrorLog::clear();
    EXPECT_FALSE(log().pathExists());
}

TEST_F(ErrorLogTest, clearingAMissingLogDoesNothing)
{
    ErrorLog::clear();
    EXPECT_EQ(test::listTree(mFolder.path()), std::vector<std::string>{"user/"});
}

TEST_F(ErrorLogTest, failureToDeleteAStaleLogIsNotReported)
{
    mkdir(log().toNativeString().c_str(), 0755); // a folder is never removed as if it were a file
    setAge(604801);
    EXPECT_NO_THROW(ErrorLog::clear());
    EXPECT_TRUE(log().pathExists());
}

TEST_F(ErrorLogTest, aMissingFolderLeavesNoFileAndRaisesNoError)
{
    ASSERT_EQ(rmdir((mFolder.path() + "/user").c_str()), 0);
    ErrorLog() << "abc";
    EXPECT_TRUE(test::listTree(mFolder.path()).empty());
}

TEST_F(ErrorLogTest, aLogThatIsNoFileIsIgnored)
{
    mkdir(log().toNativeString().c_str(), 0755);
    ErrorLog() << "abc";
    ASSERT_EQ(rmdir(log().toNativeString().c_str()), 0);
    ASSERT_EQ(mkfifo(log().toNativeString().c_str(), 0644), 0);
    ErrorLog() << "abc";
    EXPECT_EQ(FileUtils::fileSize(log()), -1) << "still no file";
}

TEST_F(ErrorLogTest, exceptionsOfTheHostDoNotLeaveTheDestructor)
{
    ThrowingPathUtils paths(fileString(mFolder.path()));
    PathUtils::install(&paths);
    ErrorLog() << "abc"; // an exception would end the process here
    PathUtils::install(&mPaths);
    EXPECT_FALSE(log().pathExists());
}

TEST_F(ErrorLogTest, entriesOfThreadsAreWholeAndInTheThreadsOwnOrder)
{
    constexpr int kThreads = 4;
    constexpr int kEntries = 50;
    std::vector<std::thread> threads;
    for (int thread = 0; thread < kThreads; ++thread)
        threads.emplace_back([thread] {
            for (long long entry = 0; entry < kEntries; ++entry)
                ErrorLog() << "thread " << static_cast<long long>(thread) << "\nentry " << entry;
        });
    for (std::thread& thread : threads)
        thread.join();

    const std::string content = test::readFile(log());
    int next[kThreads] = {};
    std::size_t entries = 0;
    for (std::size_t start = 0; start < content.size(); ++entries) {
        const std::size_t end = content.find("...\n", start) + 4;
        const std::string entry = content.substr(start, end - start);
        ASSERT_THAT(entry, testing::MatchesRegex(kHeadPattern + "thread [0-9]\nentry [0-9]+\n\\.\\.\\.\n"));
        const int thread = std::stoi(entry.substr(entry.find("\nthread ") + 8));
        EXPECT_EQ(std::stoi(entry.substr(entry.find("\nentry ") + 7)), next[thread]++);
        start = end;
    }
    EXPECT_EQ(entries, static_cast<std::size_t>(kThreads * kEntries));
}

TEST_F(ErrorLogTest, eachThreadIsNamedByItsHandle)
{
    std::string expected;
    std::thread thread([&] {
        ErrorLog() << "abc";
        expected = Library::threadText(reinterpret_cast<const void*>(pthread_self()));
    });
    thread.join();
    EXPECT_THAT(test::readFile(log()), testing::HasSubstr("\nThread ID: " + expected + "\n"));
}

TEST(ErrorLogThreadText, isAPointerOrSaysThatThereIsNone)
{
    EXPECT_EQ(Library::threadText(reinterpret_cast<const void*>(0x7f00ab)), "0x7f00ab");
    EXPECT_EQ(Library::threadText(nullptr), "{Not-any-thread}");
}

} // namespace
