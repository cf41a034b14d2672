#include <filesystem>

#include <QJsonArray>

#include <gmock/gmock.h>

#include "tests/orv-library/Program.h"

using testing::HasSubstr;

namespace {

std::string entry(const std::string& time, const std::string& message)
{
    return "---\nTime: " + time + "\nThread ID: 0x7f01\nMessage: |\n" + message + "...\n";
}

const std::string kTwoEntries = entry("2026-11-21 03:35:12", "Empty Download File:  /a b\n") +
                                entry("2026-11-21 03:35:13", "first\nsecond\n");

} // namespace

TEST(LogCommand, showsTheEntries)
{
    const test::Program program;
    test::writeFile(program.root() + "/user/errors.log", kTwoEntries);
    const QJsonObject document = program.run({"log", "show", "--json"}).json();
    EXPECT_EQ(program.root() + "/user/errors.log", document["path"].toString().toStdString());
    const QJsonArray entries = document["entries"].toArray();
    ASSERT_EQ(2, entries.size());
    EXPECT_EQ((QJsonObject{{"time", "2026-11-21T03:35:12Z"},
                           {"thread", "0x7f01"},
                           {"message", "Empty Download File:  /a b"}}),
              entries[0].toObject());
    EXPECT_THAT(program.run({"log", "show"}).out,
                HasSubstr("2026-11-21 03:35:13  thread 0x7f01\n    first\n    second\n"));
}

TEST(LogCommand, textThatIsNoTimeStaysAsItIs)
{
    const test::Program program;
    test::writeFile(program.root() + "/user/errors.log", entry("yesterday", "text\n"));
    const QJsonArray entries = program.run({"log", "show", "--json"}).json()["entries"].toArray();
    EXPECT_EQ("yesterday", entries[0].toObject()["time"].toString().toStdString());
}

TEST(LogCommand, missingLogIsEmpty)
{
    const test::Program program;
    program.createRoot();
    const test::ProgramResult result = program.run({"log", "show", "--json"});
    EXPECT_EQ(0, result.status);
    EXPECT_TRUE(result.json()["entries"].toArray().isEmpty());
    EXPECT_THAT(program.run({"log", "show"}).out, HasSubstr("empty"));
    const test::ProgramResult cleared = program.run({"log", "clear"});
    EXPECT_EQ(0, cleared.status);
    EXPECT_EQ("There is no error log: " + program.root() + "/user/errors.log\n", cleared.out);
}

TEST(LogCommand, printsThePathAlone)
{
    const test::Program program;
    program.createRoot();
    EXPECT_EQ(program.root() + "/user/errors.log\n", program.run({"log", "path"}).out);
}

TEST(LogCommand, clearRemovesAFreshLogToo)
{
    const test::Program program;
    test::writeFile(program.root() + "/user/errors.log", kTwoEntries);
    const test::ProgramResult result = program.run({"log", "clear", "--json"});
    EXPECT_EQ(0, result.status);
    EXPECT_TRUE(result.json()["entries"].toArray().isEmpty());
    EXPECT_FALSE(std::filesystem::exists(program.root() + "/user/errors.log"));
    test::writeFile(program.root() + "/user/errors.log", kTwoEntries);
    EXPECT_EQ("Removed " + program.root() + "/user/errors.log\n", program.run({"log", "clear"}).out);
}

TEST(LogCommand, clearThatCannotRemoveFailsWithThePath)
{
    const test::Program program;
    std::filesystem::create_directories(program.root() + "/user/errors.log/x");
    const test::ProgramResult result = program.run({"log", "clear"});
    EXPECT_EQ(1, result.status);
    EXPECT_EQ("orv-library: cannot remove " + program.root() + "/user/errors.log\n", result.err);
}

TEST(LogCommand, aLogThatCannotBeReadKeepsNoUpdateFromBeginning)
{
    const test::Program program;
    program.createRoot();
    std::filesystem::create_directories(program.root() + "/user/errors.log");
    const test::ProgramResult result =
        program.run({"update", "--url", "http://127.0.0.1:1/", "--product", "P", "--product-version", "1"});
    EXPECT_EQ(result.status, 1);
    EXPECT_THAT(result.err, HasSubstr("update from http://127.0.0.1:1/"));
    EXPECT_THAT(result.err, testing::Not(HasSubstr("errors.log")));
    EXPECT_THAT(program.run({"log", "show"}).err, HasSubstr("errors.log"));
}
