#include "OrvHost/records/ManufacturerRefresh.h"

#include <filesystem>
#include <functional>
#include <stdexcept>

#include <sys/stat.h>

#include <gmock/gmock.h>

#include "OrvHost/update/HostLock.h"
#include "OrvLibrary/Manufacturer/ManufacturerManager.h"
#include "tests/orv-host/HostedTest.h"
#include "tests/support/StubServices.h"

namespace {

/// Returns a manufacturer file, and checks that another program cannot refresh at the same time.
class WatchingCurl : public test::DeadCurl
{
public:
    using DeadCurl::download_to_location;
    bool download_to_location(const std::string& url, const fileString& target, std::string&) override
    {
        if (url.find("logo-path") != std::string::npos)
            atLogo();
        if (url.find(missing) != std::string::npos)
            return false;
        test::writeFile(target.toNativeString(), answer);
        try {
            const OrvHost::HostLock lock =
                OrvHost::HostLock::ofChange("manufacturers", std::chrono::milliseconds(1));
        } catch (const std::runtime_error&) {
            isAlone = true;
        }
        return true;
    }

    std::string answer = R"({"Last_Modified": "20300101T000000",
        "Manufacturer": {"Id": 9, "Name": "Nine", "Logo": "nine.png"}})";
    std::string missing = "logo-path"; ///< addresses with this text cannot be had
    bool isAlone = false;
    std::function<void()> atLogo = [] {}; ///< called at each request for a logo
};

class ManufacturerRefreshTest : public test::HostedTest
{
protected:
    ManufacturerRefreshTest() { ManufacturerManager::cleanup(); }
    ~ManufacturerRefreshTest() override { ManufacturerManager::cleanup(); }

    /// The message of the failed refresh; empty if it is done.
    std::string refresh()
    {
        try {
            OrvHost::ManufacturerRefresh(mCurl).run("http://service.test/data", "http://service.test/logos");
        } catch (const std::runtime_error& error) {
            return error.what();
        }
        return {};
    }
    void writeOurs() const
    {
        folder.write("root/manufacturer-data/manufacturer_data.json",
                     R"({"Last_Modified": "20200101T000000", "Manufacturer": {"Id": 5, "Name": "Five"}})");
    }

    const fileString mFile = folder.file("root/manufacturer-data/manufacturer_data.json");
    WatchingCurl mCurl;
};

} // namespace

TEST_F(ManufacturerRefreshTest, keepsOthersOutFromReadingToWriting)
{
    OrvHost::ManufacturerRefresh refresh(mCurl);
    refresh.run("http://service.test/data", "http://service.test/logos");
    EXPECT_TRUE(mCurl.isAlone);
    EXPECT_THAT(refresh.changes().added, testing::ElementsAre(9));
    EXPECT_EQ(folder.file("root/temp/manufacturers.lock").pathExists(), false);
}

TEST_F(ManufacturerRefreshTest, startsFromWhatAnotherProgramLeftMeanwhile)
{
    ManufacturerManager::getManufacturerManager();
    writeOurs();
    OrvHost::ManufacturerRefresh refresh(mCurl);
    refresh.run("http://service.test/data", "http://service.test/logos");
    EXPECT_THAT(refresh.changes().removed, testing::ElementsAre(5));
    EXPECT_THAT(test::readFile(mFile + fileString(".bak")), testing::HasSubstr("Five"));
}

TEST_F(ManufacturerRefreshTest, changesAreToldByTheirKind)
{
    folder.write("root/manufacturer-data/manufacturer_data.json", R"({"Last_Modified": "20200101T000000",
        "Manufacturer": {"Id": 1, "Name": "One", "Last_Modified": "20200102T000000"},
        "Manufacturer": {"Id": 2, "Name": "Two", "Last_Modified": "20200102T000000"},
        "Manufacturer": {"Id": 3, "Name": "Three", "Last_Modified": "20200102T000000"},
        "Manufacturer": {"Id": 4, "Name": "Four", "Last_Modified": "20200102T000000"},
        "Manufacturer": {"Id": 5, "Name": "Five", "Last_Modified": "20200102T000000"}})");
    mCurl.answer = R"({"Last_Modified": "20300101T000000",
        "Manufacturer": {"Id": 1, "Name": "One", "Last_Modified": "20200103T000000", "Logo": "one.png"},
        "Manufacturer": {"Id": 2, "Name": "Two", "Last_Modified": "20200101T000000"},
        "Manufacturer": {"Id": 3, "Name": "Drei", "Last_Modified": "20200102T000000"},
        "Manufacturer": {"Id": 4, "Name": "Four", "Last_Modified": "20200102T000000"},
        "Manufacturer": {"Id": 6, "Name": "Six", "Last_Modified": "20200102T000000", "Logo": "six.png"}})";
    mCurl.missing = "six.png";
    OrvHost::ManufacturerRefresh refresh(mCurl);
    refresh.run("http://service.test/data", "http://service.test/logos");
    EXPECT_THAT(refresh.changes().newer, testing::ElementsAre(1));
    EXPECT_THAT(refresh.changes().older, testing::ElementsAre(2));
    EXPECT_THAT(refresh.changes().changed, testing::ElementsAre(3));
    EXPECT_THAT(refresh.changes().removed, testing::ElementsAre(5));
    EXPECT_THAT(refresh.changes().added, testing::ElementsAre(6));
    EXPECT_THAT(refresh.failedLogos(), testing::ElementsAre(testing::StartsWith(
                                           "cannot fetch http://service.test/logos&logo-path=six.png: ")));
}

TEST_F(ManufacturerRefreshTest, dataThatAreNotNewerChangeNothing)
{
    writeOurs();
    mCurl.answer = R"({"Last_Modified": "20200101T000000", "Manufacturer": {"Id": 9, "Name": "Nine"}})";
    const std::string before = test::readFile(mFile);
    EXPECT_EQ(refresh(), "");
    EXPECT_EQ(test::readFile(mFile), before);
    EXPECT_FALSE((mFile + fileString(".bak")).pathExists());
}

TEST_F(ManufacturerRefreshTest, dataThatCannotBeHadChangeNothing)
{
    writeOurs();
    mCurl.missing = "/data";
    EXPECT_EQ(refresh(), "cannot fetch http://service.test/data: ");
    EXPECT_EQ(OrvHost::ManufacturerRefresh::currentTable().count(5), 1U);
}

TEST_F(ManufacturerRefreshTest, readOnlyFileIsToldOnceAndWrittenTheNextTime)
{
    writeOurs();
    chmod(mFile.toNativeString().c_str(), 0444);
    EXPECT_EQ(refresh(),
              "cannot write " + mFile.toNativeString() + ": it was read-only; the next refresh may write it");
    EXPECT_THAT(test::readFile(mFile), testing::HasSubstr("Five"));
    EXPECT_EQ(refresh(), "");
}

TEST_F(ManufacturerRefreshTest, answerThatIsNoManufacturerFileIsRefused)
{
    writeOurs();
    mCurl.answer = "<html></html>";
    EXPECT_EQ(refresh(), "http://service.test/data answers no manufacturer file");
    EXPECT_EQ(OrvHost::ManufacturerRefresh::currentTable().count(5), 1U);
}

TEST_F(ManufacturerRefreshTest, copyOfTheFormerFileIsThatOfTheLastRefresh)
{
    writeOurs();
    test::writeFile(mFile.toNativeString() + ".bak", "an older one");
    EXPECT_EQ(refresh(), "");
    EXPECT_THAT(test::readFile(mFile + fileString(".bak")), testing::HasSubstr("Five"));
}

TEST_F(ManufacturerRefreshTest, nothingIsReplacedIfTheFormerFileCannotBeKept)
{
    writeOurs();
    folder.write("root/manufacturer-data/manufacturer_data.json.bak/in the way", "");
    EXPECT_EQ(refresh(), "cannot keep the former file as " + mFile.toNativeString() + ".bak");
    EXPECT_THAT(test::readFile(mFile), testing::HasSubstr("Five"));
    EXPECT_EQ(OrvHost::ManufacturerRefresh::currentTable().count(5), 1U);
}

TEST_F(ManufacturerRefreshTest, recordsThatCannotBeWrittenAfterAllAreNotTakenOver)
{
    writeOurs();
    mCurl.atLogo = [this] { chmod(mFile.toNativeString().c_str(), 0444); };
    EXPECT_EQ(refresh(), "cannot write " + mFile.toNativeString());
    EXPECT_EQ(OrvHost::ManufacturerRefresh::currentTable().count(5), 1U);
    mCurl.atLogo = [] {};
    EXPECT_EQ(refresh(), "") << "the next one";
}

TEST_F(ManufacturerRefreshTest, folderThatIsGoneCannotBeWritten)
{
    mCurl.atLogo = [this] {
        std::filesystem::remove_all(folder.path() + "/root/manufacturer-data");
        folder.write("root/manufacturer-data", "in the way");
    };
    EXPECT_EQ(refresh(), "cannot write " + mFile.toNativeString());
}

TEST_F(ManufacturerRefreshTest, nextRefreshIsNotPromisedWhatItCannotDo)
{
    std::filesystem::create_directories(mFile.toNativeString());
    EXPECT_EQ(refresh(), "cannot write " + mFile.toNativeString());
}

TEST_F(ManufacturerRefreshTest, requestsAreWatchedOnlyDuringARefresh)
{
    refresh();
    EXPECT_EQ(&Curl::get(), &mCurl);
}
