#include "OrvHost/health/ErrorLogReader.h"

#include <filesystem>
#include <stdexcept>

#include <gmock/gmock.h>

#include "tests/support/TempFolder.h"

using OrvHost::ErrorLogEntry;
using OrvHost::ErrorLogReader;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

std::string entry(const std::string& time, const std::string& message)
{
    return "---\nTime: " + time + "\nThread ID: 0x7f01\nMessage: |\n" + message + "...\n";
}

/// "TIME, THREAD: MESSAGE" of each entry.
std::vector<std::string> parsed(const std::string& text)
{
    std::vector<std::string> entries;
    for (const ErrorLogEntry& one : ErrorLogReader::parse(text))
        entries.push_back(one.time + ", " + one.thread + ": " + one.message);
    return entries;
}

} // namespace

TEST(ErrorLogReader, readsEntriesInOrder)
{
    EXPECT_THAT(parsed(entry("2026-11-21 03:35:12", "Empty Download File:  /a b\n") +
                       entry("2", "first\nsecond\n") + entry("3", "third\n")),
                ElementsAre("2026-11-21 03:35:12, 0x7f01: Empty Download File:  /a b",
                            "2, 0x7f01: first\nsecond", "3, 0x7f01: third"));
}

TEST(ErrorLogReader, textBeforeTheFirstEntryIsPassedOver)
{
    EXPECT_THAT(parsed("rest of a line\n...\n" + entry("1", "text\n")), ElementsAre("1, 0x7f01: text"));
    EXPECT_THAT(parsed(""), IsEmpty());
    EXPECT_THAT(parsed("no log at all\n"), IsEmpty());
}

TEST(ErrorLogReader, messageMayHoldSeparatorsAndBlankLines)
{
    EXPECT_THAT(parsed(entry("1", "---\nTime: none\n...\n---\ntext\n") + entry("2", "other\n\n")),
                ElementsAre("1, 0x7f01: ---\nTime: none\n...\n---\ntext", "2, 0x7f01: other\n"));
    EXPECT_THAT(parsed(entry("1", "")), ElementsAre("1, 0x7f01: "));
    EXPECT_THAT(parsed(entry("1", "\n")), ElementsAre("1, 0x7f01: "));
    EXPECT_THAT(parsed(entry("1", "x....\n...\n")), ElementsAre("1, 0x7f01: x....\n..."));
}

TEST(ErrorLogReader, unfinishedEntryIsShownAsFarAsItGoes)
{
    const std::pair<const char*, const char*> table[] = {
        {"---\nTime: ", ", : "},
        {"---\nTime: 1", "1, : "},
        {"---\nTime: 1\n", "1, : "},
        {"---\nTime: 1\nThread", "1, : Thread"},
        {"---\nTime: 1\nThread ID: 2", "1, 2: "},
        {"---\nTime: 1\nThread ID: 2\nMess", "1, 2: Mess"},
        {"---\nTime: 1\nThread ID: 2\nMessage: |\n", "1, 2: "},
        {"---\nTime: 1\nThread ID: 2\nMessage: |\nfir", "1, 2: fir"},
        {"---\nTime: 1\nThread ID: 2\nMessage: |\nfirst\n..", "1, 2: first\n.."},
        {"---\nTime: 1\n...\n", "1, : "}};
    for (const auto& [text, expected] : table)
        EXPECT_THAT(parsed(text), ElementsAre(expected)) << text;
}

TEST(ErrorLogReader, missingFileIsEmptyAndAnUnreadableOneToldFromIt)
{
    const test::TempFolder folder;
    EXPECT_THAT(ErrorLogReader::read(folder.file("errors.log")), IsEmpty());
    EXPECT_THAT(ErrorLogReader::readIfPossible(folder.file("errors.log")), IsEmpty());
    const fileString file = folder.write("errors.log", entry("1", "text\n"));
    EXPECT_EQ(ErrorLogReader::read(file).size(), 1U);
    EXPECT_EQ(ErrorLogReader::readIfPossible(file).size(), 1U);
    const fileString unreadable(folder.path());
    EXPECT_THROW(ErrorLogReader::read(unreadable), std::runtime_error);
    EXPECT_THAT(ErrorLogReader::readIfPossible(unreadable), IsEmpty());
}
