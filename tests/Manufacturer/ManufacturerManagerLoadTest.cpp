#include "OrvLibrary/Manufacturer/ManufacturerManager.h"

#include <filesystem>

#include <sys/stat.h>

#include "OrvLibrary/host/NullPointerRaiser.h"
#include "OrvLibrary/host/StringUtils.h"
#include "tests/Manufacturer/ManufacturerFixture.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/ClockSpan.h"

namespace {

class ManufacturerManagerLoad : public test::ManufacturerFixture
{
protected:
    ManufacturerManagerLoad()
    {
        mTable.emplace(99, named("old"));
        mTime = time("19991231T000000");
        mText = "old text";
    }

    /// Reads a file with this content into outputs that are not empty.
    bool read(const std::string& content)
    {
        return ManufacturerManager::read_manufacturer_file(mHost.folder().write("m.json", content), mTable,
                                                           &mTime, &mText);
    }

    std::string ids() const
    {
        std::string text;
        for (const auto& [id, record] : mTable)
            text += std::to_string(id) + ":" + record.getManufacturerName() + " ";
        return text;
    }

    Table mTable;
    ptime mTime;
    std::string mText;
};

} // namespace

TEST_F(ManufacturerManagerLoad, readsEveryMember)
{
    ASSERT_TRUE(read(R"({"Last_Modified": "20261121T033512.250000", "Default_Text": "Ask üs",
        "Manufacturer": {"Id": 5, "Last_Modified": "20250101T101112", "Name": "Möbel", "Url": "http://m",
        "Phone": "default", "Fax": "12", "Email": "a@b", "Logo": "logos/Möbel.png", "Lock": true,
        "Deleted": true}})"));
    EXPECT_EQ(mTime, time("20261121T033512.250000"));
    EXPECT_EQ(mText, "Ask üs");
    ASSERT_EQ(ids(), "5:Möbel ");
    EXPECT_TRUE(mTable.at(5) == Manufacturer("Möbel", "http://m", "default", "12", "logos/Möbel.png", "a@b",
                                             true, true, time("20250101T101112")));
}

TEST_F(ManufacturerManagerLoad, missingMembersHaveTheirDefaults)
{
    ASSERT_TRUE(read(R"({"Manufacturer": {"Id": 5}})"));
    EXPECT_TRUE(mTable.at(5) == Manufacturer("", "", "", "", "", "", false, false, ptime()));
    EXPECT_TRUE(mTable.at(5).getLastModified().is_not_a_date_time());
}

TEST_F(ManufacturerManagerLoad, emptyObjectIsAnEmptyTableOfNow)
{
    const test::ClockSpan span = test::clockSpanOf([this] { EXPECT_TRUE(read("{}")); });
    EXPECT_TRUE(mTable.empty());
    EXPECT_GE(mTime, span.before);
    EXPECT_LE(mTime, span.after);
    EXPECT_EQ(mText, StringUtils::loadString(10108));
    EXPECT_NE(mText, "");
}

TEST_F(ManufacturerManagerLoad, emptyDefaultTextIsOne)
{
    ASSERT_TRUE(read(R"({"Default_Text": ""})"));
    EXPECT_EQ(mText, "");
}

TEST_F(ManufacturerManagerLoad, textThatIsNoTimeIsNotADate)
{
    ASSERT_TRUE(read(R"({"Last_Modified": "yesterday", "Manufacturer": {"Id": 1, "Last_Modified": ""}})"));
    EXPECT_TRUE(mTime.is_not_a_date_time());
    EXPECT_TRUE(mTable.at(1).getLastModified().is_not_a_date_time());
}

TEST_F(ManufacturerManagerLoad, laterRecordOfAnIdReplacesTheEarlierOne)
{
    ASSERT_TRUE(read(R"({"Manufacturer": {"Id": 5, "Name": "first"}, "Manufacturer": {"Id": 6, "Name": "x"},
        "Manufacturer": {"Id": 5, "Name": "second"}, "Manufacturer": {"Id": 5, "Url": "third"}})"));
    EXPECT_EQ(ids(), "5: 6:x ");
    EXPECT_EQ(mTable.at(5).getManufacturerUrl(), "third");
}

TEST_F(ManufacturerManagerLoad, laterMemberOfAKeyReplacesTheEarlierOne)
{
    ASSERT_TRUE(read(R"({"Default_Text": "a", "Default_Text": "b", "Manufacturer": {"Id": 5, "Id": 6}})"));
    EXPECT_EQ(mText, "b");
    EXPECT_EQ(ids(), "6: ");
}

TEST_F(ManufacturerManagerLoad, recordWithoutAnIdIsLeftOut)
{
    ASSERT_TRUE(read(R"({"Manufacturer": {"Id": 1}, "Manufacturer": {"Name": 5}, "Manufacturer": {},
        "Manufacturer": {"Id": 2147483647}, "Manufacturer": {"Id": -2147483648}, "Manufacturer": {"Id": -1}})"));
    EXPECT_EQ(ids(), "-2147483648: -1: 1: 2147483647: ");
}

TEST_F(ManufacturerManagerLoad, oddBytesInTextsStand)
{
    ASSERT_TRUE(
        read("{\"Manufacturer\": {\"Id\": 1, \"Name\": \"\xFF\\u0000\xC3\", \"Logo\": \"\xF6.png\"}}"));
    EXPECT_EQ(mTable.at(1).getManufacturerName(), std::string("\xFF\0\xC3", 3));
    EXPECT_EQ(mTable.at(1).getManufacturerLogoName().toNativeString(), "\xF6.png");
}

TEST_F(ManufacturerManagerLoad, missingFileTouchesNothing)
{
    EXPECT_FALSE(
        ManufacturerManager::read_manufacturer_file(mHost.folder().file("missing"), mTable, &mTime, &mText));
    EXPECT_EQ(ids(), "99:old ");
    EXPECT_EQ(mTime, time("19991231T000000"));
    EXPECT_EQ(mText, "old text");
}

TEST_F(ManufacturerManagerLoad, rootThatIsNoObjectEmptiesTheTableOnly)
{
    const std::string contents[] = {"",
                                    " ",
                                    "[]",
                                    "[{}]",
                                    "5",
                                    "{",
                                    "{}x",
                                    "<html></html>",
                                    "{\"a\":}",
                                    R"({"Manufacturer": {"Id": 2147483648}})",
                                    std::string(100000, '{'),
                                    "{\"a\":" + std::string(100000, '['),
                                    std::string("\0", 1)};
    for (const std::string& content : contents) {
        mTable.emplace(99, named("old"));
        EXPECT_FALSE(read(content)) << content.substr(0, 100);
        EXPECT_EQ(ids(), "");
        EXPECT_EQ(mTime, time("19991231T000000"));
        EXPECT_EQ(mText, "old text");
    }
}

TEST_F(ManufacturerManagerLoad, anyOtherFailureEmptiesEverything)
{
    const std::string contents[] = {
        R"({"Last_Modified": 5})",
        R"({"Last_Modified": null})",
        R"({"Default_Text": 5})",
        R"({"Default_Text": {}})",
        R"({"Manufacturer": 5})",
        R"({"Manufacturer": []})",
        R"({"Manufacturer": null})",
        R"({"Manufacturer": {"Id": "1"}})",
        R"({"Manufacturer": {"Id": 1.0}})",
        R"({"Manufacturer": {"Id": null}})",
        R"({"Manufacturer": {"Id": 1, "Last_Modified": 5}})",
        R"({"Manufacturer": {"Id": 1, "Name": 5}})",
        R"({"Manufacturer": {"Id": 1, "Url": true}})",
        R"({"Manufacturer": {"Id": 1, "Phone": 5}})",
        R"({"Manufacturer": {"Id": 1, "Fax": []}})",
        R"({"Manufacturer": {"Id": 1, "Email": {}}})",
        R"({"Manufacturer": {"Id": 1, "Logo": null}})",
        R"({"Manufacturer": {"Id": 1, "Lock": "true"}})",
        R"({"Manufacturer": {"Id": 1, "Lock": 1}})",
        R"({"Manufacturer": {"Id": 1, "Deleted": 0}})",
        R"({"Manufacturer": {"Id": 1}, "Manufacturer": {"Id": 1, "Name": 5}, "Manufacturer": {"Id": 1}})",
    };
    for (const std::string& content : contents) {
        mTable.emplace(99, named("old"));
        mTime = time("19991231T000000");
        mText = "old text";
        EXPECT_FALSE(read(content)) << content;
        EXPECT_EQ(ids(), "") << content;
        EXPECT_EQ(mTime, earliest()) << content;
        EXPECT_EQ(mTime.date(), boost::gregorian::date(1400, 1, 1)) << content;
        EXPECT_EQ(mText, "") << content;
    }
}

TEST_F(ManufacturerManagerLoad, fileThatCannotBeOpenedEmptiesEverything)
{
    EXPECT_FALSE(ManufacturerManager::read_manufacturer_file(fileString(mHost.folder().path()), mTable,
                                                             &mTime, &mText));
    EXPECT_EQ(ids(), "");
    EXPECT_EQ(mTime, earliest());
    EXPECT_EQ(mText, "");
}

TEST_F(ManufacturerManagerLoad, fileThatMayNotBeReadEmptiesEverything)
{
    const fileString path = mHost.folder().write("m.json", R"({"Manufacturer": {"Id": 5}})");
    ASSERT_EQ(chmod(mHost.folder().path().c_str(), 0755), 0);
    ASSERT_EQ(chmod(path.toNativeString().c_str(), 0000), 0);
    const test::ChildEnd end = test::runWithoutRights([&] {
        const bool isRead = ManufacturerManager::read_manufacturer_file(path, mTable, &mTime, &mText);
        return !isRead && mTable.empty() && mTime == earliest() && mText.empty() ? 0 : 1;
    });
    EXPECT_EQ(end.status, 0);
}

TEST_F(ManufacturerManagerLoad, cutAnywhereTheFileIsNotRead)
{
    const std::string whole = R"({"Default_Text": "d", "Manufacturer": {"Id": 5, "Lock": true}})";
    for (std::size_t length = 0; length < whole.size(); ++length) {
        EXPECT_FALSE(read(whole.substr(0, length))) << length;
        EXPECT_EQ(ids(), "") << length;
    }
    EXPECT_TRUE(read(whole));
}

TEST_F(ManufacturerManagerLoad, largeFileIsReadWhole)
{
    std::string content = R"({"Default_Text": "d")";
    const std::string filling(5000, 'x');
    for (int id = 0; id < 10000; ++id)
        content += R"(, "Manufacturer": {"Id": )" + std::to_string(id) + R"(, "Name": ")" + filling + "\"}";
    ASSERT_GT(content.size(), 50000000U);
    ASSERT_TRUE(read(content + "}"));
    EXPECT_EQ(mTable.size(), 10000U);
    EXPECT_EQ(mTable.at(9999).getManufacturerName(), filling);
}

TEST_F(ManufacturerManagerLoad, outputsAreRequired)
{
    const fileString path = mHost.folder().write("m.json", "{}");
    EXPECT_THROW(ManufacturerManager::read_manufacturer_file(path, mTable, nullptr, &mText),
                 NullPointerError);
    EXPECT_THROW(ManufacturerManager::read_manufacturer_file(path, mTable, &mTime, nullptr),
                 NullPointerError);
}

TEST_F(ManufacturerManagerLoad, missingFolderIsMadeWithStandardPermissions)
{
    const fileString folder = mHost.folder().file("manufacturer-data");
    std::filesystem::remove_all(folder.toNativeString());
    manager().loadManufacturers();
    EXPECT_EQ(test::modeOf(folder), 0755U);
}
