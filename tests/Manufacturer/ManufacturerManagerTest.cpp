#include "OrvLibrary/Manufacturer/ManufacturerManager.h"

#include <atomic>
#include <thread>
#include <vector>

#include "OrvLibrary/host/MessagingSystem.h"
#include "tests/Manufacturer/ManufacturerFixture.h"

namespace {

class ManufacturerManagerTest : public test::ManufacturerFixture
{
};

const char kTwo[] = R"({"Last_Modified": "20200101T000000", "Default_Text": "d",
    "Manufacturer": {"Id": 7, "Name": "Seven"}, "Manufacturer": {"Id": -3, "Name": "Minus", "Deleted": true}})";

} // namespace

TEST_F(ManufacturerManagerTest, isOneUntilItIsCleanedUp)
{
    ManufacturerManager* const first = ManufacturerManager::getManufacturerManager();
    EXPECT_EQ(first, ManufacturerManager::getManufacturerManager());
    first->setAllowManufacturerEdit(true);
    ManufacturerManager::cleanup();
    ManufacturerManager::cleanup();
    EXPECT_FALSE(manager().getAllowManufacturerEdit());
}

TEST_F(ManufacturerManagerTest, withoutAFileThereIsNothing)
{
    EXPECT_TRUE(manager().getIdNameMap().empty());
    EXPECT_EQ(manager().getDefaultText(), "");
    EXPECT_EQ(manager().getLastModified(), earliest());
    EXPECT_FALSE(manager().getAllowManufacturerEdit());
    EXPECT_FALSE(manager().manufacturerExists(0));
    EXPECT_TRUE(mHost.messages().empty());
}

TEST_F(ManufacturerManagerTest, loadsItsFileWhenItIsMade)
{
    writeDataFile(kTwo);
    EXPECT_EQ(names(), "-3:Minus 7:Seven ");
    EXPECT_EQ(manager().getDefaultText(), "d");
    EXPECT_EQ(manager().getLastModified(), time("20200101T000000"));
}

TEST_F(ManufacturerManagerTest, unknownIdIsADeletedRecordWithoutTexts)
{
    writeDataFile(kTwo);
    EXPECT_TRUE(manager().manufacturerExists(7));
    EXPECT_EQ(manager().getManufacturer(7).getManufacturerName(), "Seven");
    EXPECT_FALSE(manager().getManufacturer(7).isDeleted());
    EXPECT_TRUE(manager().getManufacturer(-3).isDeleted());
    EXPECT_EQ(&manager().getManufacturer(7), &manager().getManufacturer(7));
    for (const long id : {0L, 8L, -1L, 4294967303L}) {
        EXPECT_FALSE(manager().manufacturerExists(id));
        const Manufacturer& unknown = manager().getManufacturer(id);
        EXPECT_TRUE(unknown.isDeleted());
        EXPECT_FALSE(unknown.isLocked());
        EXPECT_EQ(unknown.getManufacturerName() + unknown.getManufacturerUrl() +
                      unknown.getManufacturerPhoneNumber(true) + unknown.getManufacturerFaxNumber(true) +
                      unknown.getManufacturerEmail(true) + unknown.getManufacturerLogoName().toNativeString(),
                  "");
    }
}

TEST_F(ManufacturerManagerTest, editPermissionIsKeptInMemory)
{
    manager().setAllowManufacturerEdit(true);
    EXPECT_TRUE(manager().getAllowManufacturerEdit());
    manager().loadManufacturers();
    EXPECT_TRUE(manager().getAllowManufacturerEdit());
    manager().setAllowManufacturerEdit(false);
    EXPECT_FALSE(manager().getAllowManufacturerEdit());
    EXPECT_FALSE(dataFile().pathExists());
}

TEST_F(ManufacturerManagerTest, reloadReplacesTheTable)
{
    writeDataFile(kTwo);
    manager();
    writeDataFile(R"({"Last_Modified": "20210101T000000", "Default_Text": "e", "Manufacturer": {"Id": 1}})");
    manager().loadManufacturers();
    EXPECT_EQ(names(), "1: ");
    EXPECT_EQ(manager().getDefaultText(), "e");
    EXPECT_EQ(manager().getLastModified(), time("20210101T000000"));
}

TEST_F(ManufacturerManagerTest, reloadOfAnUnreadableFileLeavesAnEmptyTable)
{
    writeDataFile(kTwo);
    manager();
    writeDataFile("[]");
    manager().loadManufacturers();
    EXPECT_EQ(names(), "");
    EXPECT_EQ(manager().getDefaultText(), "d");
    EXPECT_EQ(manager().getLastModified(), time("20200101T000000"));
    writeDataFile(R"({"Manufacturer": 5})");
    manager().loadManufacturers();
    EXPECT_EQ(names(), "");
    EXPECT_EQ(manager().getDefaultText(), "");
    EXPECT_EQ(manager().getLastModified(), earliest());
}

TEST_F(ManufacturerManagerTest, reloadOfAMissingFileLeavesAnEmptyTable)
{
    writeDataFile(kTwo);
    manager();
    ASSERT_EQ(remove(dataFile().toNativeString().c_str()), 0);
    manager().loadManufacturers();
    EXPECT_EQ(names(), "");
    EXPECT_EQ(manager().getDefaultText(), "d");
    EXPECT_EQ(manager().getLastModified(), time("20200101T000000"));
    EXPECT_TRUE(mHost.messages().empty());
}

TEST_F(ManufacturerManagerTest, otherFolderIsTakenOver)
{
    writeDataFile(kTwo);
    manager();
    mHost.folder().write(
        "other/manufacturer_data.json",
        R"({"Last_Modified": "20210101T000000", "Default_Text": "e", "Manufacturer": {"Id": 1}})");
    EXPECT_TRUE(manager().changeManufacturerDataPath(mHost.folder().file("other/")));
    EXPECT_EQ(names(), "1: ");
    EXPECT_EQ(manager().getDefaultText(), "e");
    EXPECT_EQ(manager().getLastModified(), time("20210101T000000"));
    EXPECT_EQ(test::readFile(dataFile()), kTwo);
}

TEST_F(ManufacturerManagerTest, folderIsJoinedWithoutASeparator)
{
    mHost.folder().write("other/manufacturer_data.json", kTwo);
    EXPECT_FALSE(manager().changeManufacturerDataPath(mHost.folder().file("other")));
    mHost.folder().write("othermanufacturer_data.json", kTwo);
    EXPECT_TRUE(manager().changeManufacturerDataPath(mHost.folder().file("other")));
}

TEST_F(ManufacturerManagerTest, writesGoToTheStandardFolderAfterAChange)
{
    mHost.folder().write("other/manufacturer_data.json", kTwo);
    ASSERT_TRUE(manager().changeManufacturerDataPath(mHost.folder().file("other/")));
    manager().write_manufacturer_file();
    EXPECT_NE(test::readFile(dataFile()).find("Seven"), std::string::npos);
    EXPECT_EQ(test::readFile(mHost.folder().file("other/manufacturer_data.json")), kTwo);
}

TEST_F(ManufacturerManagerTest, folderThatCannotBeReadChangesNothing)
{
    writeDataFile(kTwo);
    manager();
    EXPECT_FALSE(manager().changeManufacturerDataPath(mHost.folder().file("missing/")));
    EXPECT_FALSE(manager().changeManufacturerDataPath(fileString()));
    for (const char* content : {"", "[]", "{", "{}x", R"({"Default_Text": 5})", R"({"Manufacturer": []})",
                                R"({"Default_Text": "new", "Manufacturer": {"Id": "1"}})"}) {
        mHost.folder().write("other/manufacturer_data.json", content);
        EXPECT_FALSE(manager().changeManufacturerDataPath(mHost.folder().file("other/"))) << content;
        EXPECT_EQ(names(), "-3:Minus 7:Seven ") << content;
        EXPECT_EQ(manager().getDefaultText(), "d") << content;
        EXPECT_EQ(manager().getLastModified(), time("20200101T000000")) << content;
    }
}

TEST_F(ManufacturerManagerTest, materialAlertIsAnInformationShownOnce)
{
    ManufacturerManager::ManufacturerMaterialAlert();
    const std::vector<test::SentMessage> expected{
        {272032338, error::Trait::Kind::InformationOnce, "", "", ""}};
    EXPECT_EQ(mHost.messages(), expected);
}

TEST_F(ManufacturerManagerTest, eightThreadsMayAskAtOnce)
{
    writeDataFile(kTwo);
    std::atomic<int> wrong{0};
    std::vector<std::thread> threads;
    for (int thread = 0; thread < 8; ++thread) {
        threads.emplace_back([&wrong, thread] {
            for (int i = 0; i < 2000; ++i) {
                ManufacturerManager* const owner = ManufacturerManager::getManufacturerManager();
                owner->setAllowManufacturerEdit(thread % 2 == 0);
                owner->getAllowManufacturerEdit();
                if (owner->getManufacturer(7).getManufacturerName() != "Seven" ||
                    owner->manufacturerExists(8) || owner->getIdNameMap().size() != 2)
                    ++wrong;
            }
        });
    }
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(wrong, 0);
}

TEST_F(ManufacturerManagerTest, cleanUpMayComeWhileAnotherThreadAsks)
{
    std::thread asking([] {
        for (int i = 0; i < 200; ++i)
            EXPECT_NE(ManufacturerManager::getManufacturerManager(), nullptr);
    });
    for (int i = 0; i < 200; ++i)
        ManufacturerManager::cleanup();
    asking.join();
}
