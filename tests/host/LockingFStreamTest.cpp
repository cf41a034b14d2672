#include "OrvLibrary/host/LockingFStream.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <filesystem>
#include <iterator>
#include <locale>
#include <thread>

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include "OrvLibrary/host/FileUtils.h"
#include "OrvLibrary/host/impl/ReplacementFile_p.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/TempFolder.h"

namespace {

using Names = std::vector<std::string>;
constexpr auto kRead = std::ios_base::in;
constexpr auto kWrite = std::ios_base::out | std::ios_base::trunc;
constexpr auto kAppend = std::ios_base::out | std::ios_base::app;

class LockingFStreamTest : public testing::Test
{
protected:
    Names list() const { return test::listTree(mFolder.path()); }

    static bool opens(const fileString& path, std::ios_base::openmode mode)
    {
        const LockingFStream stream(path, mode);
        EXPECT_EQ(stream.is_open(), !stream.fail());
        return stream.is_open();
    }

    static std::string readAll(const fileString& path)
    {
        LockingFStream in(path, kRead);
        EXPECT_TRUE(in.is_open());
        return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
    }

    static void writeAll(const fileString& path, const std::string& content)
    {
        LockingFStream out(path, kWrite);
        out << content;
        out.close();
        EXPECT_TRUE(out.good());
    }

    test::TempFolder mFolder;
};

TEST_F(LockingFStreamTest, readsWhatAnotherWrote)
{
    const std::string content("line\r\n\n\0x\x1A\xFF", 11);
    LockingFStream out(mFolder.file("data"), kWrite);
    ASSERT_TRUE(out.is_open());
    out << content;
    out.close();
    EXPECT_TRUE(out.good());
    EXPECT_FALSE(out.is_open());
    LockingFStream in(mFolder.file("data"), kRead);
    EXPECT_EQ(std::string(std::istreambuf_iterator<char>(in), {}), content);
    in.close();
    EXPECT_FALSE(in.fail());
    EXPECT_EQ(list(), Names{"data"});
}

TEST_F(LockingFStreamTest, carriesMoreThanItsBuffer)
{
    std::string content;
    for (int i = 0; i < 100000; ++i)
        content += std::to_string(i) + "\n";
    LockingFStream out(mFolder.file("data"), kWrite);
    for (int i = 0; i < 100000; ++i)
        out << i << "\n";
    out.close();
    EXPECT_TRUE(out.good());
    EXPECT_TRUE(readAll(mFolder.file("data")) == content);
}

TEST_F(LockingFStreamTest, targetKeepsItsOldContentUntilClose)
{
    const fileString file = mFolder.write("data", "old");
    LockingFStream out(file, kWrite);
    out << "new" << std::flush;
    EXPECT_EQ(test::readFile(file), "old");
    out.close();
    EXPECT_EQ(test::readFile(file), "new");
}

TEST_F(LockingFStreamTest, withoutCloseTheTargetStaysAndNothingIsLeft)
{
    const fileString file = mFolder.write("data", "old");
    {
        LockingFStream out(file, kWrite);
        out << "new" << std::flush;
        LockingFStream fresh(mFolder.file("fresh"), kWrite);
        fresh << "new";
    }
    EXPECT_EQ(test::readFile(file), "old");
    EXPECT_EQ(list(), Names{"data"});
}

TEST_F(LockingFStreamTest, aFailedStreamIsNotCommitted)
{
    const fileString file = mFolder.write("data", "old");
    LockingFStream out(file, kWrite);
    out << "new";
    out.setstate(std::ios_base::failbit);
    out.close();
    EXPECT_TRUE(out.fail());
    EXPECT_EQ(test::readFile(file), "old");
    EXPECT_EQ(list(), Names{"data"});
}

TEST_F(LockingFStreamTest, closingTwiceFailsAndChangesNothing)
{
    const fileString file = mFolder.file("data");
    LockingFStream out(file, kWrite);
    out << "new";
    out.close();
    EXPECT_TRUE(out.good());
    out.close();
    EXPECT_TRUE(out.fail());
    EXPECT_EQ(test::readFile(file), "new");
}

TEST_F(LockingFStreamTest, failuresThrowWhereAskedFor)
{
    LockingFStream missing(mFolder.file("none"), kRead);
    EXPECT_THROW(missing.exceptions(std::ios_base::failbit | std::ios_base::badbit), std::ios_base::failure);
    LockingFStream out(mFolder.file("folder/none"), kWrite);
    EXPECT_THROW(out.exceptions(std::ios_base::failbit), std::ios_base::failure);
    LockingFStream closed(mFolder.file("data"), kWrite);
    closed.exceptions(std::ios_base::failbit | std::ios_base::badbit);
    std::filesystem::remove_all(mFolder.path());
    EXPECT_THROW(closed.close(), std::ios_base::failure) << "there is nothing left to rename";
}

TEST_F(LockingFStreamTest, whatIsNoRegularFileDoesNotOpen)
{
    std::filesystem::create_directory(mFolder.path() + "/folder");
    ASSERT_EQ(mkfifo(mFolder.file("fifo").toNativeString().c_str(), 0666), 0);
    ASSERT_EQ(symlink("circle", mFolder.file("circle").toNativeString().c_str()), 0);
    const Names before = list();
    const std::string file = mFolder.path() + "/fresh";
    for (const auto mode : {std::ios_base::openmode(kRead), kWrite, kAppend}) {
        EXPECT_FALSE(opens(mFolder.file("folder"), mode));
        EXPECT_FALSE(opens(mFolder.file("fifo"), mode)) << "and does not wait";
        EXPECT_FALSE(opens(mFolder.file("circle"), mode));
        EXPECT_FALSE(opens(mFolder.file("none/none"), mode));
        EXPECT_FALSE(opens(fileString("/dev/null"), mode));
        EXPECT_FALSE(opens(fileString(file + std::string(1, '\0')), mode));
        EXPECT_FALSE(opens(fileString(), mode));
    }
    EXPECT_FALSE(opens(fileString(file), kRead));
    EXPECT_EQ(list(), before);
}

/// The system's reason for which the stream does not open; 0 when it does.
int reasonNotToOpen(const fileString& path, std::ios_base::openmode mode)
{
    errno = 0;
    const LockingFStream stream(path, mode);
    return stream.is_open() ? 0 : errno;
}

TEST_F(LockingFStreamTest, theReasonForAFailureIsInErrno)
{
    const fileString file = mFolder.write("data", "old");
    ASSERT_EQ(chmod(file.toNativeString().c_str(), 0444), 0);
    EXPECT_EQ(reasonNotToOpen(mFolder.file("none"), kRead), ENOENT);
    EXPECT_EQ(reasonNotToOpen(fileString(mFolder.path()), kRead), EISDIR);
    for (const auto mode : {kWrite, kAppend}) {
        EXPECT_EQ(reasonNotToOpen(file, mode), EACCES);
        EXPECT_EQ(reasonNotToOpen(mFolder.file("none/none"), mode), ENOENT);
        EXPECT_EQ(reasonNotToOpen(fileString(mFolder.path()), mode), EISDIR);
    }
    std::filesystem::create_directory(mFolder.path() + "/fresh");
    LockingFStream out(mFolder.file("fresh/data"), kWrite);
    std::filesystem::remove_all(mFolder.path() + "/fresh");
    errno = 0;
    out.close();
    EXPECT_EQ(errno, ENOENT);
}

TEST_F(LockingFStreamTest, aReadOnlyTargetIsRefusedAlsoForTheSuperuser)
{
    const fileString file = mFolder.write("data", "old");
    ASSERT_EQ(chmod(file.toNativeString().c_str(), 0444), 0);
    EXPECT_FALSE(opens(file, kWrite));
    EXPECT_FALSE(opens(file, kAppend));
    EXPECT_EQ(readAll(file), "old");
    EXPECT_EQ(list(), Names{"data"});
}

TEST_F(LockingFStreamTest, theFileOfAnotherIsRefused)
{
    if (geteuid() != 0)
        GTEST_SKIP() << "needs the superuser, who can become somebody else";
    ASSERT_EQ(chmod(mFolder.path().c_str(), 0777), 0);
    const fileString file = mFolder.write("data", "old");
    const auto end =
        test::runWithoutRights([&] { return opens(file, kWrite) || opens(file, kAppend) ? 1 : 0; });
    EXPECT_EQ(end.status, 0);
    EXPECT_EQ(list(), Names{"data"});
}

TEST_F(LockingFStreamTest, aLinkIsFollowedToItsTarget)
{
    mFolder.write("real/data", "old");
    ASSERT_EQ(symlink("real/hop", mFolder.file("link").toNativeString().c_str()), 0);
    ASSERT_EQ(symlink("data", mFolder.file("real/hop").toNativeString().c_str()), 0);
    writeAll(mFolder.file("link"), "new");
    EXPECT_EQ(test::readFile(mFolder.file("real/data")), "new");
    EXPECT_EQ(list(), (Names{"link", "real/", "real/data", "real/hop"}));
    EXPECT_TRUE(std::filesystem::is_symlink(mFolder.file("link").toNativeString()));
}

TEST_F(LockingFStreamTest, aLinkToAMissingFileCreatesThatFile)
{
    std::filesystem::create_directory(mFolder.path() + "/real");
    const std::string target = mFolder.path() + "/real/data";
    ASSERT_EQ(symlink(target.c_str(), mFolder.file("link").toNativeString().c_str()), 0);
    writeAll(mFolder.file("link"), "new");
    EXPECT_EQ(test::readFile(target), "new");
    EXPECT_TRUE(std::filesystem::is_symlink(mFolder.file("link").toNativeString()));
}

TEST_F(LockingFStreamTest, theTargetKeepsItsPermissionsAndOwner)
{
    const fileString file = mFolder.write("data", "old");
    ASSERT_EQ(chmod(file.toNativeString().c_str(), 0606), 0);
    const uid_t owner = geteuid() == 0 ? 65534 : geteuid();
    ASSERT_EQ(chown(file.toNativeString().c_str(), owner, getegid()), 0);
    writeAll(file, "new");
    struct stat status = {};
    ASSERT_EQ(stat(file.toNativeString().c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 07777, 0606u);
    EXPECT_EQ(status.st_uid, owner);
}

TEST_F(LockingFStreamTest, aNewFileHasTheUsualPermissions)
{
    const mode_t mask = umask(022);
    writeAll(mFolder.file("data"), "new");
    umask(mask);
    struct stat status = {};
    ASSERT_EQ(stat(mFolder.file("data").toNativeString().c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 07777, 0644u);
}

TEST_F(LockingFStreamTest, namesOfEveryLengthCanBeWritten)
{
    const std::string longest(255, 'n');
    writeAll(mFolder.file(longest), "new");
    writeAll(mFolder.file("\xFF\x01"), "new");
    EXPECT_EQ(readAll(mFolder.file(longest)), "new");
    EXPECT_EQ(list().size(), 2u);
}

TEST_F(LockingFStreamTest, numbersAreWrittenAndReadInTheClassicLocale)
{
    struct Grouped : std::numpunct<char>
    {
        char do_thousands_sep() const override { return '.'; }
        char do_decimal_point() const override { return ','; }
        std::string do_grouping() const override { return "\3"; }
    };
    const std::locale former = std::locale::global(std::locale(std::locale::classic(), new Grouped));
    LockingFStream out(mFolder.file("data"), kWrite);
    out << 1234567 << " " << 0.5;
    out.close();
    LockingFStream in(mFolder.file("data"), kRead);
    int whole = 0;
    double half = 0;
    in >> whole >> half;
    std::locale::global(former);
    EXPECT_EQ(test::readFile(mFolder.file("data")), "1234567 0.5");
    EXPECT_EQ(whole, 1234567);
    EXPECT_EQ(half, 0.5);
}

TEST_F(LockingFStreamTest, appendingWritesInPlace)
{
    const fileString file = mFolder.file("log");
    for (const char* text : {"one\n", "two\n"}) {
        LockingFStream out(file, kAppend);
        out << text << std::flush;
        EXPECT_NE(test::readFile(file).find(text), std::string::npos) << "before it is closed";
        out.close();
        EXPECT_TRUE(out.good());
    }
    EXPECT_EQ(test::readFile(file), "one\ntwo\n");
    EXPECT_EQ(list(), Names{"log"});
}

TEST_F(LockingFStreamTest, aKillInTheMiddleLeavesTheOldContentAndTheNextWriterCleansUp)
{
    const fileString file = mFolder.write("data", "old");
    const fileString fresh = mFolder.file("fresh");
    const auto end = test::runInChild([&] {
        LockingFStream out(file, kWrite);
        LockingFStream freshOut(fresh, kWrite);
        out << "half" << std::flush;
        freshOut << "half" << std::flush;
        raise(SIGKILL);
        return 0;
    });
    ASSERT_EQ(end.signal, SIGKILL);
    EXPECT_EQ(test::readFile(file), "old");
    EXPECT_FALSE(fresh.pathExists());
    EXPECT_EQ(list().size(), 3u) << "the two files beside are left";
    writeAll(file, "new");
    writeAll(fresh, "new");
    EXPECT_EQ(list(), (Names{"data", "fresh"}));
}

class LockingFStreamFullDisk : public LockingFStreamTest
{
protected:
    /// Runs on a disk of 64 KiB where `disk/data` holds "old", and expects it to stay so.
    void expectOldContentAfter(const std::function<bool(const fileString&)>& work)
    {
        const std::string disk = mFolder.path() + "/disk";
        std::filesystem::create_directory(disk);
        std::string reason;
        const auto end = test::runOnSmallDisk(
            disk, 64,
            [&] {
                const fileString file = mFolder.write("disk/data", "old");
                if (!work(file))
                    return 1;
                return test::readFile(file) == "old" && test::listTree(disk) == Names{"data"} ? 0 : 2;
            },
            reason);
        if (!end)
            GTEST_SKIP() << reason;
        EXPECT_EQ(end->status, 0);
    }
};

TEST_F(LockingFStreamFullDisk, leavesTheOldContent)
{
    expectOldContentAfter([](const fileString& file) {
        LockingFStream out(file, kWrite);
        for (int i = 0; i < 1024; ++i)
            out << std::string(1000, 'x') << '\n';
        errno = 0;
        out.close();
        return out.fail() && errno == ENOSPC;
    });
}

TEST_F(LockingFStreamFullDisk, isFoundAtTheLastByteToo)
{
    expectOldContentAfter([](const fileString& file) {
        LockingFStream out(file, kWrite);
        for (int i = 0; i < 63 * 1024; ++i)
            out.put('x'); // fits into the stream's buffer, but not onto the disk
        const bool wasGood = out.good();
        out.close();
        return wasGood && out.fail();
    });
}

TEST_F(LockingFStreamFullDisk, isFoundByTheStreamEvenWhereItWasWrittenPastIt)
{
    expectOldContentAfter([](const fileString& file) {
        LockingFStream out(file, kWrite);
        const std::string content(1024 * 1024, 'x');
        std::copy(content.begin(), content.end(), std::ostreambuf_iterator<char>(out));
        const bool didNotNotice = out.good();
        out.close();
        return didNotNotice && out.fail();
    });
}

TEST_F(LockingFStreamTest, readersShareTheLock)
{
    const fileString file = mFolder.write("data", "x");
    EXPECT_TRUE(opens(file, kRead));
    const LockingFStream first(file, kRead);
    EXPECT_TRUE(opens(file, kRead));
}

/// Opens while somebody else holds the lock, and says how long that took; 0 seconds when it opened.
double refusedAfter(const fileString& file, std::ios_base::openmode mode)
{
    const auto start = std::chrono::steady_clock::now();
    const LockingFStream stream(file, mode);
    const std::chrono::duration<double> passed = std::chrono::steady_clock::now() - start;
    return stream.is_open() ? 0 : passed.count();
}

TEST_F(LockingFStreamTest, aLockThatOthersHoldIsWaitedForFiveSecondsAtMost)
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

TEST_F(LockingFStreamTest, aWriterThatWaitedLocksTheFileThatReplacedTheOldOne)
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

TEST_F(LockingFStreamTest, readersSeeWholeContentsWhileWritersReplaceThem)
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

TEST_F(LockingFStreamTest, twoWritersOfANewFileBothSucceedOneAfterTheOther)
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

TEST(ReplacementFile, theNameBesideFitsAndBelongsToItsTargetAlone)
{
    const std::string longName(254, 'n');
    const std::string first = host::ReplacementFile::besideName("/folder/" + longName + "1");
    const std::string second = host::ReplacementFile::besideName("/folder/" + longName + "2");
    EXPECT_NE(first, second);
    EXPECT_EQ(fileString(first).parentPath(), fileString("/folder"));
    EXPECT_LE(fileString(first).stemWithExtension().toNativeString().size(), 255u);
    EXPECT_EQ(fileString(first).extension(), fileString(".orv-new"));
    EXPECT_EQ(host::ReplacementFile::besideName("data").find('/'), std::string::npos);
}

} // namespace
