#include "OrvLibrary/host/SHA1.h"

#include <thread>
#include <vector>

#include <QCryptographicHash>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include "OrvLibrary/host/impl/files/FileHandle_p.h"
#include "OrvLibrary/host/impl/files/SHA1_p.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/TempFolder.h"

namespace {

constexpr char kOfAbc[] = "a9993e364706816aba3e25717850c26c9cd0d89d";

/// Bytes that do not repeat periodically.
std::string noise(std::size_t count)
{
    std::string content(count, '\0');
    for (std::size_t i = 0; i < count; ++i)
        content[i] = static_cast<char>(i * 2654435761u >> 24);
    return content;
}

class SHA1Test : public testing::Test
{
protected:
    test::TempFolder mFolder;
};

TEST_F(SHA1Test, isInLowerCaseHexadecimal)
{
    EXPECT_EQ(SHA1::fileContentsToSHA1Hex(mFolder.write("abc", "abc")), kOfAbc);
    EXPECT_EQ(SHA1::fileContentsToSHA1Hex(mFolder.write("empty", "")),
              "da39a3ee5e6b4b0d3255bfef95601890afd80709");
}

TEST_F(SHA1Test, isTheSameForPiecesOfEverySize)
{
    constexpr std::size_t kPiece = 1024 * 1024;
    for (const std::size_t size : {kPiece - 1, kPiece, kPiece + 1, 3 * kPiece + 12345}) {
        const std::string content = noise(size);
        const auto expected = QCryptographicHash::hash(
            QByteArray(content.data(), static_cast<int>(content.size())), QCryptographicHash::Sha1);
        EXPECT_EQ(SHA1::fileContentsToSHA1Hex(mFolder.write("data", content)),
                  expected.toHex().toStdString());
    }
}

TEST_F(SHA1Test, bothWaysAgree)
{
    const std::string path = mFolder.write("data", noise(1500000)).toNativeString();
    const host::FileHandle first = host::openRegularFile(path);
    const host::FileHandle second = host::openRegularFile(path);
    const std::string hash = host::sha1HexByOpenSsl(first.get());
    EXPECT_EQ(hash.size(), 40u);
    EXPECT_EQ(hash, host::sha1HexByQt(second.get()));
}

TEST_F(SHA1Test, isEmptyForWhatIsNoReadableRegularFile)
{
    const fileString fifo = mFolder.file("fifo");
    ASSERT_EQ(mkfifo(fifo.toNativeString().c_str(), 0666), 0);
    const fileString file = mFolder.write("file", "abc");
    EXPECT_EQ(SHA1::fileContentsToSHA1Hex(mFolder.file("none")), "");
    EXPECT_EQ(SHA1::fileContentsToSHA1Hex(fileString(mFolder.path())), "");
    EXPECT_EQ(SHA1::fileContentsToSHA1Hex(fifo), "") << "and does not wait";
    EXPECT_EQ(SHA1::fileContentsToSHA1Hex(fileString("/dev/zero")), "") << "and does not run for ever";
    EXPECT_EQ(SHA1::fileContentsToSHA1Hex(fileString()), "");
    EXPECT_EQ(SHA1::fileContentsToSHA1Hex(fileString(file.toNativeString() + std::string(1, '\0'))), "");
}

TEST_F(SHA1Test, isEmptyForAFileThatMayNotBeRead)
{
    ASSERT_EQ(chmod(mFolder.path().c_str(), 0755), 0);
    const fileString file = mFolder.write("file", "abc");
    ASSERT_EQ(chmod(file.toNativeString().c_str(), 0000), 0);
    const auto end =
        test::runWithoutRights([&] { return SHA1::fileContentsToSHA1Hex(file).empty() ? 0 : 1; });
    EXPECT_EQ(end.status, 0);
}

TEST_F(SHA1Test, isEmptyWhenReadingFails)
{
    // A folder can be opened, but reading it fails.
    const host::FileHandle folder = host::openFile(mFolder.path(), 0);
    ASSERT_TRUE(folder);
    EXPECT_EQ(host::sha1HexByOpenSsl(folder.get()), "");
    EXPECT_EQ(host::sha1HexByQt(folder.get()), "");
}

TEST_F(SHA1Test, isFollowedThroughALink)
{
    mFolder.write("abc", "abc");
    ASSERT_EQ(symlink("abc", mFolder.file("link").toNativeString().c_str()), 0);
    EXPECT_EQ(SHA1::fileContentsToSHA1Hex(mFolder.file("link")), kOfAbc);
}

TEST_F(SHA1Test, mayBeCalledFromManyThreads)
{
    const fileString file = mFolder.write("abc", "abc");
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i)
        threads.emplace_back([&] {
            for (int round = 0; round < 20; ++round)
                EXPECT_EQ(SHA1::fileContentsToSHA1Hex(file), kOfAbc);
        });
    for (std::thread& thread : threads)
        thread.join();
}

} // namespace
