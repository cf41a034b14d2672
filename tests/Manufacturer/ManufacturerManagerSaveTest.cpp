#include "OrvLibrary/Manufacturer/ManufacturerManager.h"

#include <sys/stat.h>

#include "OrvLibrary/json/json_writer.h"
#include "tests/Manufacturer/ManufacturerFixture.h"
#include "tests/support/ClockSpan.h"
#include "tests/support/FormatPage.h"

namespace {

class ManufacturerManagerSave : public test::ManufacturerFixture
{
protected:
    /// The data file without the times of writing.
    std::string written() const
    {
        std::string text = test::readFile(dataFile());
        const auto at = text.find("\"Last_Modified\": \"") + 18;
        return text.replace(at, text.find('"', at) - at, "NOW");
    }

    /// The time stored in the file.
    ptime stamp() const
    {
        Table table;
        ptime time;
        std::string text;
        EXPECT_TRUE(ManufacturerManager::read_manufacturer_file(dataFile(), table, &time, &text));
        return time;
    }
};

} // namespace

TEST_F(ManufacturerManagerSave, fileHasTheMembersInOrder)
{
    Table edited;
    edited.emplace(8, Manufacturer("Möbel \"8\"", "u", "default", "f", "lögo.png", "e", true, false,
                                   time("20250101T101112.500000")));
    edited.emplace(-2, Manufacturer("", "", "", "", "", "", false, true, ptime()));
    manager().saveModifiedManufacturers(edited, "call\nus");
    EXPECT_EQ(written(), R"({
  "Last_Modified": "NOW",
  "Default_Text": "call\nus",
  "Manufacturer": {
    "Id": -2,
    "Last_Modified": "not-a-date-time",
    "Name": "",
    "Url": "",
    "Phone": "",
    "Fax": "",
    "Email": "",
    "Logo": "",
    "Lock": false,
    "Deleted": true
  },
  "Manufacturer": {
    "Id": 8,
    "Last_Modified": "20250101T101112.500000",
    "Name": "Möbel \"8\"",
    "Url": "u",
    "Phone": "default",
    "Fax": "f",
    "Email": "e",
    "Logo": "lögo.png",
    "Lock": true,
    "Deleted": false
  }
}
)");
}

TEST_F(ManufacturerManagerSave, tableIsReadBackAsItWasWritten)
{
    Table edited;
    edited.emplace(1, Manufacturer("n", "u", "p", "f", "l", "e", true, true, time("20250101T101112.123456")));
    edited.emplace(2, Manufacturer("", "", "", "", "", "", false, false, ptime()));
    edited.emplace(3, Manufacturer("\xFF\x01", "", "", "", "\xF6", "", false, false,
                                   ptime(boost::date_time::pos_infin)));
    edited.emplace(4, Manufacturer(std::string("a\0b", 3), "", "", "", "", "", false, false, earliest()));
    manager().saveModifiedManufacturers(edited, "text");
    Table table;
    ptime time;
    std::string text;
    ASSERT_TRUE(ManufacturerManager::read_manufacturer_file(dataFile(), table, &time, &text));
    EXPECT_TRUE(table == edited);
    EXPECT_EQ(text, "text");
}

TEST_F(ManufacturerManagerSave, exampleOnThePageIsWhatIsReadAndWritten)
{
    std::string example = test::exampleOnPage("manufacturer_data");
    writeDataFile(example);
    EXPECT_EQ(names(), "4:Doors & More 17:Möbelwerk ");
    EXPECT_EQ(manager().getLastModified(), time("20261121T033512.250000"));
    EXPECT_EQ(manager().getManufacturer(17).getManufacturerPhoneNumber(true), "Ask your dealer");
    manager().write_manufacturer_file();
    example.replace(example.find("20261121T033512.250000"), 22, "NOW");
    EXPECT_EQ(written(), example + "\n");
}

TEST_F(ManufacturerManagerSave, theTwoHalvesMakeTheDocument)
{
    Table edited;
    edited.emplace(1, named("n"));
    manager().saveModifiedManufacturers(edited, "t");
    json_writer::Object root;
    manager().write_globals(root);
    EXPECT_EQ(root.members().size(), 2U);
    manager().write_manufacturers(root);
    ASSERT_EQ(root.members().size(), 3U);
    EXPECT_EQ(root.members().back().first, "Manufacturer");
}

TEST_F(ManufacturerManagerSave, everyWriteHasItsOwnTime)
{
    ptime first, second;
    const test::ClockSpan span = test::clockSpanOf([&] {
        manager().write_manufacturer_file();
        first = stamp();
        EXPECT_EQ(manager().getLastModified(), earliest()) << "the manager's own time is another matter";
        manager().manageManufacturerData();
        second = stamp();
    });
    EXPECT_GE(first, span.before);
    EXPECT_GT(second, first);
    EXPECT_LE(second, span.after);
}

TEST_F(ManufacturerManagerSave, folderIsMadeWhenItIsMissing)
{
    ASSERT_EQ(rmdir((mHost.folder().path() + "/manufacturer-data").c_str()), 0);
    manager().write_manufacturer_file();
    EXPECT_TRUE(dataFile().pathExists());
}

TEST_F(ManufacturerManagerSave, fileHasStandardPermissions)
{
    writeDataFile("{}");
    ASSERT_EQ(chmod(dataFile().toNativeString().c_str(), 0600), 0);
    manager().write_manufacturer_file();
    EXPECT_EQ(test::modeOf(dataFile()), 0644U);
}

TEST_F(ManufacturerManagerSave, readOnlyFileIsToldAndMadeWritableForTheNextTime)
{
    writeDataFile("{}");
    manager();
    ASSERT_EQ(chmod(dataFile().toNativeString().c_str(), 0444), 0);
    manager().write_manufacturer_file();
    EXPECT_EQ(test::readFile(dataFile()), "{}");
    const std::vector<test::SentMessage> expected{
        {272032391, error::Trait::Kind::ErrorMinimal, dataFile().toNativeString(), "", ""}};
    EXPECT_EQ(mHost.messages(), expected);
    EXPECT_EQ(test::modeOf(dataFile()), 0644U);
    manager().write_manufacturer_file();
    EXPECT_NE(test::readFile(dataFile()), "{}");
    EXPECT_EQ(mHost.messages().size(), 1U);
}

TEST_F(ManufacturerManagerSave, checkTellsOfAFileThatCannotBeWritten)
{
    ManufacturerManager::checkWriteDataFile();
    writeDataFile("{}");
    ManufacturerManager::checkWriteDataFile();
    EXPECT_TRUE(mHost.messages().empty());
    ASSERT_EQ(chmod(dataFile().toNativeString().c_str(), 0444), 0);
    ManufacturerManager::checkWriteDataFile();
    const std::vector<test::SentMessage> expected{
        {272032391, error::Trait::Kind::ErrorMinimal, dataFile().toNativeString(), "", ""}};
    EXPECT_EQ(mHost.messages(), expected);
    EXPECT_EQ(test::modeOf(dataFile()), 0444U);
}

TEST_F(ManufacturerManagerSave, otherFailuresAreSilent)
{
    const std::string folder = mHost.folder().path() + "/manufacturer-data";
    ASSERT_EQ(rmdir(folder.c_str()), 0);
    test::writeFile(folder, "a file in the folder's place");
    EXPECT_NO_THROW(manager().write_manufacturer_file());
    EXPECT_TRUE(mHost.messages().empty());
    EXPECT_EQ(test::readFile(folder), "a file in the folder's place");
}

TEST_F(ManufacturerManagerSave, changedRecordsGetTheCurrentTime)
{
    Table edited;
    const test::ClockSpan span = test::clockSpanOf([&] {
        edited.clear();
        for (const long id : {1L, 2L, 3L})
            edited.emplace(id, named("n" + std::to_string(id)));
        manager().saveModifiedManufacturers(edited, "");
        edited.at(2) = named("changed");
        edited.erase(3);
        edited.emplace(4, named("new", "20010101T000000"));
        manager().saveModifiedManufacturers(edited, "t");
    });

    EXPECT_EQ(names(), "1:n1 2:changed 4:new ");
    EXPECT_EQ(manager().getManufacturer(1).getLastModified(), time("20200101T000000"));
    EXPECT_GE(manager().getManufacturer(2).getLastModified(), span.before);
    EXPECT_GE(edited.at(2).getLastModified(), span.before) << "the caller's table is stamped too";
    EXPECT_EQ(manager().getManufacturer(4).getLastModified(), time("20010101T000000"));
    EXPECT_EQ(manager().getDefaultText(), "t");
}

TEST_F(ManufacturerManagerSave, recordThatDiffersInItsTimeAloneIsStamped)
{
    Table edited;
    edited.emplace(1, named("n"));
    manager().saveModifiedManufacturers(edited, "");
    edited.at(1).setLastModified(time("20300101T000000"));
    manager().saveModifiedManufacturers(edited, "");
    EXPECT_LT(edited.at(1).getLastModified(), time("20300101T000000"));
    EXPECT_GT(edited.at(1).getLastModified(), time("20200101T000000"));
}

TEST_F(ManufacturerManagerSave, editedTableStaysTheCallers)
{
    Table edited;
    edited.emplace(1, named("n"));
    manager().saveModifiedManufacturers(edited, "");
    edited.at(1).setLastModified(time("20300101T000000"));
    edited.clear();
    EXPECT_EQ(names(), "1:n ");
    EXPECT_EQ(manager().getManufacturer(1).getLastModified(), time("20200101T000000"));
}

TEST_F(ManufacturerManagerSave, recordWithoutATimeStaysUnstampedAndReadable)
{
    writeDataFile(R"({"Manufacturer": {"Id": 1, "Name": "n"}})");
    Table edited;
    ptime time;
    std::string text;
    manager();
    ASSERT_TRUE(ManufacturerManager::read_manufacturer_file(dataFile(), edited, &time, &text));
    manager().saveModifiedManufacturers(edited, "");
    manager().loadManufacturers();
    EXPECT_EQ(names(), "1:n ");
    EXPECT_TRUE(manager().getManufacturer(1).getLastModified().is_not_a_date_time());
}

TEST_F(ManufacturerManagerSave, idBeyondAnIntMakesTheFileUnreadable)
{
    Table edited;
    edited.emplace(2147483648L, named("n"));
    manager().saveModifiedManufacturers(edited, "t");
    EXPECT_EQ(names(), "2147483648:n ");
    EXPECT_NE(test::readFile(dataFile()).find("\"Id\": 2147483648"), std::string::npos);
    manager().loadManufacturers();
    EXPECT_EQ(names(), "");
}
