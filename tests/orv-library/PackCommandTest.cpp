#include <csignal>
#include <filesystem>
#include <thread>

#include "tests/orv-library/ImportFixture.h"

namespace fs = std::filesystem;
using test::ProgramResult;

namespace {

class PackCommand : public ImportFixture
{
protected:
    std::string write(const std::string& name, const std::string& content = "content") const
    {
        return mProgram.folder().write(name, content).toNativeString();
    }
};

} // namespace

TEST_F(PackCommand, archiveHoldsTheDatabaseAndEveryFileUnderItsName)
{
    const ProgramResult result = mProgram.run({"--json", "pack",
                                               write("K\xC3\xBC"
                                                     "che 1.orvlib",
                                                     mDatabase),
                                               write("a/oak.png", "oak"), write("b/tile.jpg", "tile"),
                                               "--output", path("Out.orvlibz")});
    EXPECT_EQ(result.status, 0) << result.err;
    EXPECT_EQ(result.json(),
              (QJsonObject{{"archive", QString::fromStdString(path("Out.orvlibz"))},
                           {"members", 3},
                           {"bytes", static_cast<qint64>(fs::file_size(path("Out.orvlibz")))}}));
    EXPECT_EQ(test::contentsOf(fileString(path("Out.orvlibz"))), (Contents{{"K\xC3\xBC"
                                                                            "che 1.orvlib",
                                                                            mDatabase},
                                                                           {"oak.png", "oak"},
                                                                           {"tile.jpg", "tile"}}));
}

TEST_F(PackCommand, packedLibraryIsImportedAgain)
{
    const std::string picture = test::sampleBytes(100000, 5);
    mProgram.run({"pack", write("Kitchen.orvlib", mDatabase), write("oak.png", picture), "--output",
                  path("Kitchen.orvlibz")});
    EXPECT_EQ(mProgram.run({"import", path("Kitchen.orvlibz")}).status, 0);
    EXPECT_EQ(test::readFile(rootPath("user/Kitchen.orvlib")), mDatabase);
    EXPECT_TRUE(test::contentsOf(fileString(rootPath("textures/Kitchen.zip"))) ==
                (Contents{{"oak.png", picture}}));
}

TEST_F(PackCommand, databaseAloneIsEnough)
{
    EXPECT_EQ(mProgram.run({"pack", write("a.orvlib", mDatabase), "--output", path("Out.orvlibz")}).status,
              0);
    EXPECT_EQ(test::contentsOf(fileString(path("Out.orvlibz"))).size(), 1U);
}

TEST_F(PackCommand, namesThatAnUpdateCannotFetchAreRefused)
{
    const std::string database = write("a.orvlib");
    const std::string out = path("Out.orvlibz");
    for (const char bad : std::string(":&#+%")) {
        const std::string quoted = std::string("\"") + bad + "\"";
        expectFailure({"pack", database, write(std::string("b") + bad + ".png"), "--output", out}, quoted);
        expectFailure({"pack", write(std::string("b") + bad + ".orvlib"), "--output", out}, quoted);
        expectFailure({"pack", database, "--output", path(std::string("Out") + bad + ".orvlibz")}, quoted);
    }
    for (const char* bad : {"b\n.png", "b\t.png", "b\x7F.png", "b\x01.png"})
        expectFailure({"pack", database, write(bad), "--output", out}, "control character");
}

TEST_F(PackCommand, filesThatAnUpdateWouldPunishAreRefused)
{
    const std::string database = write("a.orvlib");
    const std::string out = path("Out.orvlibz");
    fs::create_symlink("loop", path("loop"));
    expectFailure({"pack", database, write("empty.png", ""), "--output", out}, "empty.png: is empty");
    expectFailure({"pack", write("empty.orvlib", ""), "--output", out}, "empty.orvlib: is empty");
    expectFailure({"pack", database, path("none.png"), "--output", out}, "none.png: no such file");
    expectFailure({"pack", database, mProgram.folder().path(), "--output", out}, "is not a regular file");
    expectFailure({"pack", database, "/dev/zero", "--output", out}, "/dev/zero: is not a regular file");
    expectFailure({"pack", database, path("loop"), "--output", out}, "loop: no such file");
    expectFailure({"pack", write("a.db"), "--output", out}, "ends in .orvlib");
    expectFailure({"pack", database, write("b.orvlib"), "--output", out}, "one library only");
    expectFailure({"pack", database, write("x/b.png"), write("y/b.png"), "--output", out},
                  "y/b.png: another file has the same name");
    expectFailure({"pack", database, write("Old.orvlibz"), "--output", path("Old.orvlibz")},
                  "the archive itself");
}

TEST_F(PackCommand, everyReasonGetsItsLine)
{
    const ProgramResult result = mProgram.run({"pack", write("a.orvlib"), write("empty.png", ""),
                                               write("b&.png"), "--output", path("Out.orvlibz")});
    EXPECT_EQ(result.status, 1);
    EXPECT_THAT(result.err, testing::HasSubstr("empty.png: is empty"));
    EXPECT_THAT(result.err, testing::HasSubstr("b&.png: the name holds"));
}

TEST_F(PackCommand, outputThatCannotBeWrittenIsNamed)
{
    const std::string database = write("a.orvlib", mDatabase);
    expectFailure({"pack", database, "--output", path("none/Out.orvlibz")}, path("none/Out.orvlibz"));
    fs::create_directory(path("Folder.orvlibz"));
    expectFailure({"pack", database, "--output", path("Folder.orvlibz")}, path("Folder.orvlibz"));
}

TEST_F(PackCommand, wrongUsageChangesNothing)
{
    const std::string database = write("a.orvlib");
    expectFailure({"pack"}, "pack", 2);
    expectFailure({"pack", database}, "--output", 2);
    expectFailure({"pack", database, "--output", path("Out.zip")}, ".orvlibz", 2);
}

TEST_F(PackCommand, libraryWhoseDatabaseIsNoneIsRefused)
{
    const std::string page = write("a.orvlib", "<html>sign in</html>");
    expectFailure({"pack", page, "--output", path("Out.orvlibz")}, page + ": is no database");
    EXPECT_EQ(mProgram.run({"pack", "--no-database-check", page, "--output", path("Out.orvlibz")}).status, 0);
}

TEST_F(PackCommand, picturesAreStoredAndTheRestIsCompressedInPieces)
{
    std::string text;
    for (int line = 0; text.size() < 3500000; ++line)
        text += "line " + std::to_string(line * 7919 % 100003) + "\n";
    const std::string picture = test::sampleBytes(2500000, 5);
    const ProgramResult result =
        mProgram.run({"--json", "pack", write("a.orvlib", mDatabase), write("notes.txt", text),
                      write("oak.JPG", picture), write("line.txt", "\n"), "--output", path("Out.orvlibz")});
    EXPECT_EQ(result.status, 0) << result.err;
    const Contents expected{
        {"a.orvlib", mDatabase}, {"notes.txt", text}, {"oak.JPG", picture}, {"line.txt", "\n"}};
    EXPECT_TRUE(test::contentsOf(fileString(path("Out.orvlibz"))) == expected);
    EXPECT_NE(test::readFile(path("Out.orvlibz")).find(picture), std::string::npos) << "as it is";
    EXPECT_LT(result.json()["bytes"].toDouble(), static_cast<double>(picture.size() + text.size() / 2));
}

TEST_F(PackCommand, progressIsOneLineAStep)
{
    EXPECT_EQ(mProgram
                  .run({"--progress", "plain", "pack", write("a.orvlib", mDatabase), "--output",
                        path("Out.orvlibz")})
                  .err,
              "checking\npacking\nputting in place\n");
}

TEST_F(PackCommand, interruptLeavesNothingAndTheFormerArchive)
{
    const std::string former = write("Out.orvlibz", "the former archive");
    const std::string large = write("large.bin", test::sampleBytes(40000000, 5));
    const auto process =
        mProgram.start({"--json", "pack", write("a.orvlib", mDatabase), large, "--output", former});
    // Packing has started as soon as the temporary file beside the archive has content.
    const std::string beside = former + ".orv-new";
    for (int i = 0; i < 5000 && (!fs::exists(beside) || fs::file_size(beside) == 0); ++i)
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
    ::kill(static_cast<pid_t>(process->processId()), SIGINT);
    const ProgramResult result = test::Program::finish(*process);
    EXPECT_EQ(result.status, 130) << result.err;
    EXPECT_EQ(result.json(), (QJsonObject{{"archive", QJsonValue()}, {"members", 0}, {"bytes", 0}}));
    EXPECT_FALSE(fs::exists(beside));
    EXPECT_EQ(test::readFile(former), "the former archive");
}

TEST_F(PackCommand, twoProgramsNeverWriteTheSameArchive)
{
    const std::string database = write("a.orvlib", mDatabase);
    const std::string large = write("large.bin", test::sampleBytes(10000000, 5));
    const auto first = mProgram.start({"pack", database, large, "--output", path("Out.orvlibz")});
    const auto second = mProgram.start({"pack", database, large, "--output", path("Out.orvlibz")});
    const ProgramResult one = test::Program::finish(*first);
    const ProgramResult two = test::Program::finish(*second);
    EXPECT_TRUE(one.status == 0 || two.status == 0) << one.err << two.err;
    EXPECT_EQ(test::contentsOf(fileString(path("Out.orvlibz"))).size(), 2U);
    EXPECT_FALSE(fs::exists(path("Out.orvlibz.orv-new")));
}
