#include "OrvLibrary/host/impl/zip/ZipMappedFile_p.h"

#include <algorithm>
#include <cerrno>
#include <filesystem>

#include <gtest/gtest.h>

#include <fcntl.h>

#include "OrvLibrary/host/impl/files/FileHandle_p.h"
#include "tests/host/zip/FaultySystem.h"
#include "tests/support/TempFolder.h"

using test::FaultySystem;
using ZipUtils::MappedFile;

namespace {

class ZipMappedFileTest : public testing::Test
{
protected:
    host::FileHandle open(int access) const { return host::openFile(mPath, access | O_CREAT, 0666); }

    static constexpr std::size_t kSize = 9U << 20U;
    test::TempFolder mFolder;
    const std::string mPath = mFolder.path() + "/file";
};

} // namespace

TEST_F(ZipMappedFileTest, pagesAreTheFile)
{
    const host::FileHandle file = open(O_RDWR);
    if (fallocate(file.get(), 0, 0, 1) != 0 && errno == EOPNOTSUPP)
        GTEST_SKIP() << "needs a file system that reserves space";
    {
        const MappedFile mapped(file.get(), kSize);
        EXPECT_EQ(mapped.refusal(), 0);
        ASSERT_TRUE(mapped.pages());
        std::fill_n(mapped.pages(), kSize, static_cast<unsigned char>('x'));
    }
    EXPECT_TRUE(test::readFile(mPath) == std::string(kSize, 'x'));
}

TEST_F(ZipMappedFileTest, diskWithoutRoomSaysSo)
{
    const host::FileHandle file = open(O_RDWR);
    for (const int reason : {ENOSPC, EDQUOT, EFBIG}) {
        const FaultySystem system(FaultySystem::Call::Fallocate, reason);
        const MappedFile mapped(file.get(), kSize);
        EXPECT_EQ(mapped.refusal(), reason);
        EXPECT_FALSE(mapped.pages());
    }
}

TEST_F(ZipMappedFileTest, systemThatCannotDoItHasNoPagesAndNoRefusal)
{
    const host::FileHandle file = open(O_RDWR);
    for (const int reason : {EOPNOTSUPP, ENOSYS, EINTR}) {
        const FaultySystem system(FaultySystem::Call::Fallocate, reason);
        const MappedFile mapped(file.get(), kSize);
        EXPECT_EQ(mapped.refusal(), 0);
        EXPECT_FALSE(mapped.pages());
    }
}

TEST_F(ZipMappedFileTest, fileThatCannotBeMappedHasNoPages)
{
    const host::FileHandle file = open(O_WRONLY); // shared pages need a file that can be read
    const MappedFile mapped(file.get(), kSize);
    EXPECT_EQ(mapped.refusal(), 0);
    EXPECT_FALSE(mapped.pages());
}

TEST_F(ZipMappedFileTest, memoryIsGivenBack)
{
    const host::FileHandle file = open(O_RDWR);
    const std::string path = std::filesystem::canonical(mPath).string(); // the system names no links
    const auto isMapped = [&] { return test::readFile("/proc/self/maps").find(path) != std::string::npos; };
    {
        const MappedFile mapped(file.get(), kSize);
        EXPECT_EQ(isMapped(), mapped.pages() != nullptr);
    }
    EXPECT_FALSE(isMapped());
}
