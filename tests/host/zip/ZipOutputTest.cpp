#include "OrvLibrary/host/impl/zip/ZipOutput_p.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <filesystem>

#include <gmock/gmock.h>

#include "OrvLibrary/host/impl/files/FileHandle_p.h"
#include "tests/host/zip/FaultySystem.h"
#include "tests/support/ArchiveBuilder.h"

using test::FaultySystem;
using testing::ThrowsMessage;

namespace {

constexpr std::size_t kMegabyte = 1U << 20U;

class ZipOutputTest : public testing::Test
{
protected:
    host::FileHandle openSource(const std::string& content, int access = O_RDONLY) const
    {
        return host::openFile(mFolder.write("source.zip", content).toNativeString(), access);
    }
    std::string publish()
    {
        mOutput.flush();
        mOutput.publish();
        return test::readFile(mTarget);
    }

    test::TempFolder mFolder;
    const fileString mSource = mFolder.file("source.zip");
    const fileString mTarget = mFolder.file("target.zip");
    ZipUtils::ZipMeter mMeter{nullptr};
    ZipUtils::ZipPatience mPatience{mMeter};
    ZipUtils::ZipOutput mOutput{mTarget, mPatience, mMeter};
};

} // namespace

TEST_F(ZipOutputTest, sourceThatWasCutMeanwhileIsNamedAndNothingIsLeft)
{
    const host::FileHandle file = openSource(std::string(50, 's'));
    const std::vector<std::string> before = test::listTree(mFolder.path());
    for (const std::uint64_t size : {51U, 100'000U}) {
        ZipUtils::ZipOutput output(mFolder.file("cut.zip"), mPatience, mMeter);
        EXPECT_THAT([&] { output.appendRange(file.get(), 0, size, mSource); },
                    ThrowsMessage<std::runtime_error>(mSource.toNativeString() + ": cut short"))
            << size;
    }
    EXPECT_EQ(test::listTree(mFolder.path()), before);
}

TEST_F(ZipOutputTest, oneByteIsCopiedToo)
{
    const host::FileHandle file = openSource("ab");
    mOutput.appendRange(file.get(), 1, 1, mSource);
    EXPECT_EQ(publish(), "b");
}

TEST_F(ZipOutputTest, unreadableSourceIsReportedWithTheSystemsReason)
{
    const host::FileHandle file = openSource(std::string(50, 's'), O_WRONLY);
    EXPECT_THAT([&] { mOutput.appendRange(file.get(), 0, 50, mSource); },
                ThrowsMessage<std::runtime_error>(mSource.toNativeString() + ": " + std::strerror(EBADF)));
}

TEST_F(ZipOutputTest, systemCopiesLongRangesItself)
{
    const std::string content = std::string(9 * kMegabyte, 'x') + "end";
    const host::FileHandle file = openSource(content);
    off64_t from = 0, to = 0;
    const host::FileHandle probe = host::openFile(mFolder.path() + "/probe", O_WRONLY | O_CREAT, 0600);
    if (copy_file_range(file.get(), &from, probe.get(), &to, 1, 0) != 1)
        GTEST_SKIP() << "needs a file system whose files the system can copy";
    {
        const FaultySystem system(FaultySystem::Call::Pread, EIO);
        mOutput.appendRange(file.get(), 1, content.size() - 1, mSource);
    }
    EXPECT_TRUE(publish() == content.substr(1));
}

TEST_F(ZipOutputTest, worksWhereTheSystemCannotCopyRanges)
{
    // A piece of this way of copying is a megabyte.
    const std::string content = test::sampleBytes(2 * kMegabyte + 2, 1);
    const host::FileHandle file = openSource(content);
    for (const int reason : {EXDEV, EOPNOTSUPP}) {
        const FaultySystem system(FaultySystem::Call::CopyFileRange, reason);
        mOutput.appendRange(file.get(), 1, content.size() - 1, mSource);
    }
    EXPECT_TRUE(publish() == content.substr(1) + content.substr(1));
}

TEST_F(ZipOutputTest, callsThatAreInterruptedOrCutShortGoOn)
{
    const std::string content = test::sampleBytes(30'000, 1);
    const host::FileHandle file = openSource(content);
    {
        const FaultySystem system(FaultySystem::Call::Pread);
        mOutput.appendRange(file.get(), 0, content.size(), mSource);
    }
    const FaultySystem system(FaultySystem::Call::Pwrite);
    EXPECT_TRUE(publish() == content);
}

TEST_F(ZipOutputTest, failedWriteIsReportedWithTheSystemsReason)
{
    mOutput.append("content");
    const FaultySystem system(FaultySystem::Call::Pwrite, EIO);
    EXPECT_THAT([&] { mOutput.flush(); },
                ThrowsMessage<std::runtime_error>(mTarget.toNativeString() + ": " + std::strerror(EIO)));
}

TEST_F(ZipOutputTest, onlyAMegabyteWaitsInMemory)
{
    const std::string piece = test::sampleBytes(30'000, 1);
    const host::FileHandle file = openSource(piece);
    const std::string beside = host::ReplacementFile::besideName(mTarget.toNativeString());
    std::string expected;
    while (expected.size() < 4 * kMegabyte) {
        const bool isRange = expected.size() < 2 * kMegabyte;
        isRange ? mOutput.appendRange(file.get(), 0, piece.size(), mSource) : mOutput.append(piece);
        expected += piece;
        EXPECT_EQ(mOutput.position(), expected.size());
        EXPECT_GE(std::filesystem::file_size(beside) + kMegabyte, expected.size());
    }
    EXPECT_TRUE(publish() == expected);
}

TEST_F(ZipOutputTest, fileThatIsGoneCannotBePublished)
{
    mOutput.append("content");
    mOutput.flush();
    std::filesystem::remove(host::ReplacementFile::besideName(mTarget.toNativeString()));
    EXPECT_THAT([&] { mOutput.publish(); },
                ThrowsMessage<std::runtime_error>(mTarget.toNativeString() + ": " + std::strerror(ENOENT)));
}
