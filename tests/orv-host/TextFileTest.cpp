#include "OrvHost/TextFile.h"

#include <cerrno>
#include <cstring>
#include <stdexcept>

#include <gmock/gmock.h>

#include "tests/support/FileSizeLimit.h"
#include "tests/support/TempFolder.h"

namespace TextFile = OrvHost::TextFile;

namespace {

class TextFileTest : public testing::Test
{
protected:
    template <typename Work>
    static std::string failureOf(const Work& work)
    {
        try {
            work();
        } catch (const std::runtime_error& failure) {
            return failure.what();
        }
        return {};
    }

    test::TempFolder folder;
};

} // namespace

TEST_F(TextFileTest, whatIsWrittenIsRead)
{
    const fileString file = folder.file("T\xFCr.txt");
    for (const std::string& content :
         {std::string(), std::string("a\r\n\0b\xFC\n", 7), std::string(300000, 'x')}) {
        TextFile::write(file, content);
        EXPECT_EQ(TextFile::read(file), content);
    }
    EXPECT_EQ(test::listTree(folder.path()).size(), 1U);
}

TEST_F(TextFileTest, noDescriptorStaysOpen)
{
    const fileString file = folder.write("file.txt", "text");
    const auto openOnes = [] { return test::listTree("/proc/self/fd").size(); };
    const std::size_t before = openOnes();
    TextFile::read(file);
    EXPECT_THROW(TextFile::read(fileString(folder.path())), std::runtime_error);
    EXPECT_EQ(openOnes(), before);
}

TEST_F(TextFileTest, failureToReadNamesThePathAndTheReason)
{
    const std::string missing = folder.path() + "/none.txt";
    const std::string& itself = folder.path();
    EXPECT_EQ(failureOf([&] { TextFile::read(fileString(itself)); }),
              "cannot read " + itself + ": " + std::strerror(EISDIR));
    EXPECT_EQ(failureOf([&] { TextFile::read(fileString(missing)); }),
              "cannot read " + missing + ": " + std::strerror(ENOENT));
    const std::string unreadable = "/proc/self/mem"; // it can be opened
    EXPECT_EQ(failureOf([&] { TextFile::read(fileString(unreadable)); }),
              "cannot read " + unreadable + ": " + std::strerror(EIO));
}

TEST_F(TextFileTest, failureToWriteNamesThePathAndTheReason)
{
    const std::string missing = folder.path() + "/none/file.txt";
    EXPECT_EQ(failureOf([&] { TextFile::write(fileString(missing), "text"); }),
              "cannot write " + missing + ": " + std::strerror(ENOENT));
}

TEST_F(TextFileTest, fileThatDoesNotFitKeepsItsContent)
{
    const fileString file = folder.write("file.txt", "former");
    const test::FileSizeLimit limit(10);
    EXPECT_EQ(failureOf([&] { TextFile::write(file, std::string(100, 'x')); }),
              "cannot write " + file.toNativeString() + ": " + std::strerror(EFBIG));
    EXPECT_EQ(test::readFile(file), "former");
    EXPECT_EQ(test::listTree(folder.path()).size(), 1U);
}
