#include "OrvHost/health/SupportReport.h"

#include <filesystem>

#include <QRegularExpression>

#include <gmock/gmock.h>

#include "OrvLibrary/OrvLibraryVersion.h"
#include "tests/support/ScopedEnvironment.h"
#include "tests/support/TempFolder.h"

using testing::ElementsAre;
using testing::Key;
using testing::MatchesRegex;
using testing::UnorderedElementsAre;

namespace {

class SupportReportTest : public testing::Test
{
protected:
    std::map<std::string, std::string> files(const std::vector<OrvHost::Doctor::Step>& steps = {}) const
    {
        return OrvHost::SupportReport::files(folder.file("root/"), steps);
    }
    std::string log() const
    {
        const auto all = files();
        const auto found = all.find("errors.log");
        return found == all.end() ? "left out" : found->second;
    }

    const test::TempFolder folder;
};

} // namespace

TEST_F(SupportReportTest, rootThatIsNotThereLeavesOnlyTheVersions)
{
    const auto found = files();
    EXPECT_THAT(found, ElementsAre(Key("versions.txt")));
    EXPECT_THAT(found.at("versions.txt"),
                MatchesRegex("orv-library [0-9.]+\nQt 5[0-9.]+\n[^\n]+\n[^\n]+\n20[0-9T:-]+Z\n"));
    EXPECT_THAT(found.at("versions.txt"), testing::HasSubstr(ORVLIBRARY_VERSION_STRING "\n"));
}

TEST_F(SupportReportTest, stepsAreWrittenWithTheirAdvice)
{
    const auto found = files({{"settings", true, 3, "address http://a:b@c/", ""},
                              {"folders", false, 0, "none", "Make one."},
                              {"body", std::nullopt, 0, "not tried", ""}});
    EXPECT_EQ(found.at("doctor.txt"), "settings: good, 3 ms: address http://***@c/\n"
                                      "folders: FAILED, 0 ms: none\n"
                                      "    Make one.\n"
                                      "body: not tried, 0 ms: not tried\n");
}

TEST_F(SupportReportTest, everythingBelowTheRootIsListedInOrder)
{
    std::string expected = "core/\n";
    for (const char letter : std::string("qwertzuiopasdfghjklyxcvbnm"))
        folder.write(std::string("root/core/") + letter + ".orvlib", std::string(letter - 'a', 'x'));
    for (char letter = 'a'; letter <= 'z'; ++letter)
        expected += std::string("core/") + letter + ".orvlib  " + std::to_string(letter - 'a') + "\n";
    EXPECT_EQ(files().at("folders.txt"), expected);
}

TEST_F(SupportReportTest, recordsAreTakenOverWithoutSecrets)
{
    const test::ScopedEnvironment user("USER", "annabel");
    const std::vector<std::string> records = {"settings.json",   "runs.json",         "update-history.json",
                                              "last-check.json", "catalog-pins.json", "user/errors.log"};
    for (const std::string& record : records)
        folder.write("root/" + record, record + " of annabel: ?key=1\n");
    folder.write("root/preferences.json", "not for support");
    const auto found = files();
    EXPECT_THAT(found,
                UnorderedElementsAre(Key("versions.txt"), Key("folders.txt"), Key("settings.json"),
                                     Key("runs.json"), Key("update-history.json"), Key("last-check.json"),
                                     Key("catalog-pins.json"), Key("errors.log")));
    for (const std::string& record : records)
        EXPECT_EQ(found.at(record.substr(record.rfind('/') + 1)), record + " of USER: ?key=***\n");
}

TEST_F(SupportReportTest, onlyTheLastLinesOfALongLogAreTakenOver)
{
    constexpr std::size_t kMost = 1000000;
    const std::string end = "last\n" + std::string(kMost - 6, 'x') + "\n";
    ASSERT_EQ(end.size(), kMost);
    folder.write("root/user/errors.log", end);
    EXPECT_EQ(log(), end);
    folder.write("root/user/errors.log", "first\n" + end);
    EXPECT_EQ(log(), end);
    for (const char* const before : {"http://u:secret", "first\nx"}) {
        folder.write("root/user/errors.log", before + end);
        EXPECT_EQ(log(), end.substr(5)) << "a part of a line could give a secret away";
    }
    folder.write("root/user/errors.log", std::string(kMost + 1, 'x'));
    EXPECT_EQ(log(), "left out");
}
