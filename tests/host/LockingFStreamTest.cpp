#include "OrvLibrary/host/LockingFStream.h"

#include <filesystem>
#include <iterator>
#include <locale>

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include "OrvLibrary/host/impl/ReplacementFile_p.h"
#include "tests/support/TempFolder.h"

namespace {

constexpr auto kRead = std::ios_base::in;
constexpr auto kWrite = std::ios_base::out | std::ios_base::trunc;

class LockingFStreamTest : public testing::Test
{
protected:
    std::vector<std::string> list() const { return test::listTree(mFolder.path()); }

    test::TempFolder mFolder;
};

TEST_F(LockingFStreamTest, readsWhatAnotherWrote)
{
    {
        LockingFStream out(mFolder.file("data"), kWrite);
        ASSERT_TRUE(out.is_open());
        out << "line\r\n\n" << std::string("\0x", 2);
        out.close();
        EXPECT_TRUE(out.good());
        EXPECT_FALSE(out.is_open());
    }
    LockingFStream in(mFolder.file("data"), kRead);
    const std::string text{std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
    EXPECT_EQ(text, std::string("line\r\n\n\0x", 9));
    in.close();
    EXPECT_FALSE(in.fail());
    EXPECT_EQ(list(), std::vector<std::string>{"data"});
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
    EXPECT_EQ(list(), std::vector<std::string>{"data"});
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
}

} // namespace
