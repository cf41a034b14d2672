#include "OrvHost/records/ManufacturerRefresh.h"

#include <stdexcept>

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
    bool download_to_location(const std::string&, const fileString& target, std::string&) override
    {
        test::writeFile(target.toNativeString(),
                        R"({"Last_Modified": "20300101T000000", "Manufacturer": {"Id": 9, "Name": "Nine"}})");
        try {
            const OrvHost::HostLock lock =
                OrvHost::HostLock::ofChange("manufacturers", std::chrono::milliseconds(1));
        } catch (const std::runtime_error&) {
            isAlone = true;
        }
        return true;
    }

    bool isAlone = false;
};

class ManufacturerRefreshTest : public test::HostedTest
{
protected:
    ManufacturerRefreshTest() { ManufacturerManager::cleanup(); }
    ~ManufacturerRefreshTest() override { ManufacturerManager::cleanup(); }

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
    folder.write("root/manufacturer-data/manufacturer_data.json",
                 R"({"Last_Modified": "20200101T000000", "Manufacturer": {"Id": 5, "Name": "Five"}})");
    OrvHost::ManufacturerRefresh refresh(mCurl);
    refresh.run("http://service.test/data", "http://service.test/logos");
    EXPECT_THAT(refresh.changes().removed, testing::ElementsAre(5));
    EXPECT_THAT(test::readFile(folder.file("root/manufacturer-data/manufacturer_data.json.bak")),
                testing::HasSubstr("Five"));
}
