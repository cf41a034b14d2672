#include "OrvHost/history/HeldVersions.h"

#include <filesystem>

#include <gmock/gmock.h>

#include "OrvLibrary/host/PathUtils.h"
#include "tests/orv-host/HostedTest.h"
#include "tests/support/ArchiveBuilder.h"
#include "tests/support/SampleDatabase.h"
#include "tests/support/StubServices.h"

using OrvHost::CatalogCategory;
using OrvHost::CatalogHistory;
using OrvHost::CatalogPins;
using OrvHost::CatalogPlace;
using OrvHost::FormerVersion;
namespace HeldVersions = OrvHost::HeldVersions;
using OrvHost::VersionKeeper;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

namespace {

const CatalogPlace kDoors{CatalogCategory::Core, "Doors.orvlib"};
const CatalogPlace kGarden{CatalogCategory::Bonus, "Garden.orvlib"};
const CatalogPlace kFiles{CatalogCategory::Referenced, "Files.zip"};

VersionKeeper::Offer offer(const CatalogPlace& place, const std::string& version = "2")
{
    const std::string asked = place.name + (place.category == CatalogCategory::Bonus ? "z" : "");
    return {place, version, "http://service.example/c?&library=" + asked + "&product=P&version=1", {"X: 1"}};
}

/// Sends the prepared body, or fails without one. Asks the progress function once.
class OneBody : public test::DeadCurl
{
public:
    std::string body;
    std::string problem; ///< the reason if there is no body
    std::vector<std::string> targets;
    std::vector<std::string> lines;
    int aborted = 0;                  ///< how often the progress function asked for an end
    unsigned mode = 0;                ///< of the target's folder
    std::vector<std::string> besides; ///< the files in the target's folder at the beginning

    using DeadCurl::download_to_location;
    bool download_to_location(const std::string&, const fileString& target,
                              const std::vector<std::string>& headerLines, void* context,
                              ProgressFunction progress, std::string& reason, int&) override
    {
        targets.push_back(target.toNativeString());
        lines = headerLines;
        mode = test::modeOf(target.parentPath());
        besides = test::listTree(target.parentPath().toNativeString());
        aborted += progress(context, 0, 0, 0, 0) == 1;
        reason = problem;
        if (body.empty())
            return false;
        test::writeFile(target.toNativeString(), body);
        return true;
    }
};

class HeldVersionsTest : public test::HostedTest
{
protected:
    /// The reasons of the failures.
    std::vector<std::string> fetch(const std::vector<VersionKeeper::Offer>& offers,
                                   bool checksDatabases = true)
    {
        std::vector<std::string> reasons;
        for (const HeldVersions::Failure& failure :
             HeldVersions::fetch(service, offers, checksDatabases, isCancelled))
            reasons.push_back(failure.place.name + ": " + failure.reason);
        return reasons;
    }
    std::vector<std::string> versions(const CatalogPlace& place) const
    {
        std::vector<std::string> names;
        for (const FormerVersion& version : CatalogHistory().versions(place))
            names.push_back(version.version);
        return names;
    }

    OneBody service;
    std::function<bool()> isCancelled = [] { return false; };
};

} // namespace

TEST_F(HeldVersionsTest, newVersionIsFetchedIntoTheHistoryOnce)
{
    service.body = test::sampleDatabase("2");
    EXPECT_THAT(fetch({offer(kDoors)}), IsEmpty());
    EXPECT_THAT(versions(kDoors), ElementsAre("2"));
    EXPECT_EQ(test::readFile(CatalogHistory().newest(kDoors)), service.body);
    ASSERT_THAT(service.targets, SizeIs(1));
    EXPECT_EQ(fileString(service.targets[0]).stemWithExtension(), fileString("Doors.orvlib"));
    EXPECT_THAT(service.lines, ElementsAre("X: 1"));
    EXPECT_EQ(service.aborted, 0);
    EXPECT_THAT(fetch({offer(kDoors)}), IsEmpty());
    EXPECT_THAT(service.targets, SizeIs(1)) << "it is there";
    EXPECT_THAT(fetch({offer(kDoors, "3")}), IsEmpty());
    EXPECT_THAT(versions(kDoors), ElementsAre("3", "2"));
}

TEST_F(HeldVersionsTest, packedCatalogIsUnpacked)
{
    test::ArchiveBuilder packed;
    packed.add("inside.orvlib", test::sampleDatabase("2"));
    packed.add("oak.png", "oak");
    service.body = packed.bytes();
    EXPECT_THAT(fetch({offer(kGarden)}), IsEmpty());
    const std::vector<FormerVersion> found = CatalogHistory().versions(kGarden);
    ASSERT_THAT(found, SizeIs(1));
    EXPECT_EQ(test::readFile(found[0].file), test::sampleDatabase("2"));
    EXPECT_TRUE(found[0].companion.pathExists());
}

TEST_F(HeldVersionsTest, archiveWithoutACatalogIsRefusedAndRemoved)
{
    test::ArchiveBuilder packed;
    packed.add("oak.png", "oak");
    service.body = packed.bytes();
    EXPECT_THAT(fetch({offer(kGarden)}), ElementsAre("Garden.orvlib: no catalog is in the archive"));
    service.body = "a web page";
    EXPECT_THAT(fetch({offer(kGarden)}), ElementsAre(testing::HasSubstr("Garden.orvlibz")));
    test::ArchiveBuilder page;
    page.add("inside.orvlib", "a web page");
    service.body = page.bytes();
    EXPECT_THAT(fetch({offer(kGarden)}), ElementsAre("Garden.orvlib: the new file is no database"));
    EXPECT_THAT(test::listTree(PathUtils::getObject().getTempPath().toNativeString()), IsEmpty());
}

TEST_F(HeldVersionsTest, onlyCatalogsMustBeDatabases)
{
    service.body = "a web page";
    EXPECT_THAT(fetch({offer(kDoors)}), ElementsAre("Doors.orvlib: the new file is no database"));
    EXPECT_THAT(versions(kDoors), IsEmpty());
    EXPECT_THAT(fetch({offer(kFiles)}), IsEmpty());
    EXPECT_THAT(versions(kFiles), ElementsAre("2"));
    EXPECT_THAT(fetch({offer(kDoors)}, false), IsEmpty());
    EXPECT_THAT(versions(kDoors), ElementsAre("2"));
}

TEST_F(HeldVersionsTest, failuresTellTheirReasonAndDoNotStopTheOthers)
{
    EXPECT_THAT(fetch({offer(kDoors)}), ElementsAre("Doors.orvlib: the download failed"));
    service.problem = "HTTP 503";
    EXPECT_THAT(fetch({offer(kDoors), offer(kFiles)}),
                ElementsAre("Doors.orvlib: HTTP 503", "Files.zip: HTTP 503"));
    folder.write("root/history/core", "in the way");
    service.body = test::sampleDatabase("2");
    EXPECT_THAT(fetch({offer(kDoors), offer(kFiles)}),
                ElementsAre(testing::HasSubstr("cannot create the folder")));
    EXPECT_THAT(versions(kFiles), ElementsAre("2"));
}

TEST_F(HeldVersionsTest, folderOfTheDownloadIsNewAndPrivateAndRemoved)
{
    service.problem = "HTTP 503";
    fetch({offer(kDoors)});
    ASSERT_THAT(service.targets, SizeIs(1));
    const fileString work = fileString(service.targets[0]).parentPath();
    EXPECT_FALSE(work.pathExists());
    std::filesystem::create_directories(work.toNativeString());
    test::writeFile(work.toNativeString() + "/left", "of a killed run");
    service.body = test::sampleDatabase("2");
    fetch({offer(kDoors)});
    EXPECT_THAT(service.besides, IsEmpty());
    EXPECT_EQ(service.mode, 0700U);
    EXPECT_FALSE(work.pathExists());
}

TEST_F(HeldVersionsTest, cancelEndsTheWorkWithoutFailures)
{
    isCancelled = [] { return true; };
    EXPECT_THAT(fetch({offer(kDoors)}), IsEmpty());
    EXPECT_THAT(service.targets, IsEmpty());
    int questions = 0;
    isCancelled = [&questions] { return ++questions > 1; };
    EXPECT_THAT(fetch({offer(kDoors), offer(kFiles)}), IsEmpty());
    EXPECT_THAT(service.targets, SizeIs(1));
    EXPECT_EQ(service.aborted, 1);
}

TEST_F(HeldVersionsTest, offersThatAreInTheHistoryAreNotedOnce)
{
    CatalogPins pins(host.root());
    pins.hold(kDoors, {"1", ""});
    EXPECT_FALSE(HeldVersions::note(pins, {offer(kDoors)})) << "it was not fetched";
    service.body = test::sampleDatabase("2");
    fetch({offer(kDoors), offer(kFiles)});
    EXPECT_FALSE(HeldVersions::note(pins, {offer(kFiles)})) << "it is not held";
    EXPECT_TRUE(HeldVersions::note(pins, {offer(kDoors), offer(kFiles)}));
    EXPECT_EQ(pins.held().at(kDoors).version, "1");
    EXPECT_EQ(pins.held().at(kDoors).newer, "2");
    EXPECT_FALSE(pins.isHeld(kFiles));
    EXPECT_FALSE(HeldVersions::note(pins, {offer(kDoors)})) << "it was noted before";
}
