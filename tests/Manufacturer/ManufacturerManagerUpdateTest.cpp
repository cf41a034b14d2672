// The refresh against a real server.
#include "OrvLibrary/Manufacturer/ManufacturerManager.h"

#include <stdexcept>
#include <utility>

#include <sys/stat.h>

#include <gmock/gmock.h>

#include "tests/Manufacturer/ManufacturerFixture.h"
#include "tests/support/ClockSpan.h"
#include "tests/support/FaultServer.h"
#include "tests/support/StubServices.h"

using testing::ElementsAre;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

namespace {

using test::FaultReply;

std::string record(long id, const std::string& name, const std::string& lastModified,
                   const std::string& logo = "")
{
    return ", \"Manufacturer\": {\"Id\": " + std::to_string(id) + ", \"Name\": \"" + name +
           "\", \"Last_Modified\": \"" + lastModified + "\", \"Logo\": \"" + logo + "\"}";
}

std::string document(const std::string& lastModified, const std::string& records)
{
    return "{\"Last_Modified\": \"" + lastModified + "\", \"Default_Text\": \"" + lastModified + "\"" +
           records + "}";
}

constexpr char kOlder[] = "20200101T000000";
constexpr char kNow[] = "20210101T000000";
constexpr char kNewer[] = "20220101T000000";

class ManufacturerManagerUpdate : public test::ManufacturerFixture
{
protected:
    /// Sets the manager's records before the refresh.
    void have(const std::string& records)
    {
        writeDataFile(document(kNow, records));
        manager().loadManufacturers();
    }

    void serve(const FaultReply& reply) { mServer.on("/data", reply); }
    void serve(const std::string& lastModified, const std::string& records)
    {
        serve(FaultReply::ok(document(lastModified, records)));
    }
    void serveLogo(const std::string& wireName, const std::string& content)
    {
        mServer.on("/logo?x=1&logo-path=" + wireName, FaultReply::ok(content));
    }

    void refresh()
    {
        manager().checkForManufacturerUpdates(mServer.url("/data?y=2"), mServer.url("/logo?x=1"));
    }

    /// The logos that the manager requested, in order.
    std::vector<std::string> askedLogos() const
    {
        std::vector<std::string> logos;
        for (const auto& request : mServer.requests()) {
            const auto at = request.target.find("&logo-path=");
            if (at != std::string::npos)
                logos.push_back(request.target.substr(at + 11));
        }
        return logos;
    }

    fileString dataPath(const std::string& name) const
    {
        return mHost.folder().file("manufacturer-data/" + name);
    }
    void haveFile(const std::string& name, const std::string& content)
    {
        mHost.folder().write("manufacturer-data/" + name, content);
    }
    std::vector<std::string> files() const
    {
        return test::listTree(mHost.folder().path() + "/manufacturer-data");
    }

    test::FaultServer mServer;
};

} // namespace

TEST_F(ManufacturerManagerUpdate, newerFileReplacesTheTable)
{
    ptime applied, written;
    const test::ClockSpan span = test::clockSpanOf([&] {
        have(record(1, "one", kOlder) + record(2, "two", kOlder) + record(3, "local", kNewer));
        serve(kNewer, record(1, "ONE", kNewer) + record(2, "TWO", kOlder) + record(9, "nine", kOlder));
        const std::size_t asked = mServer.requestsFor("/data?y=2").size();
        refresh();
        EXPECT_EQ(names(), "1:ONE 2:TWO 9:nine ");
        EXPECT_EQ(manager().getDefaultText(), kNewer);
        EXPECT_EQ(mServer.requestsFor("/data?y=2").size(), asked + 1);
        applied = manager().getLastModified();
        manager().loadManufacturers();
        EXPECT_EQ(names(), "1:ONE 2:TWO 9:nine ") << "the data file was written";
        written = manager().getLastModified();
    });
    EXPECT_GE(applied, span.before);
    EXPECT_GE(written, applied);
    EXPECT_LE(written, span.after);
    EXPECT_THAT(files(), ElementsAre("manufacturer_data.json"));
}

TEST_F(ManufacturerManagerUpdate, sameFileIsNotAppliedTwice)
{
    have("");
    serve(kNewer, record(1, "one", kNewer, "a.png"));
    refresh();
    const std::string written = test::readFile(dataFile());
    refresh();
    EXPECT_EQ(test::readFile(dataFile()), written);
    EXPECT_THAT(askedLogos(), ElementsAre("a.png"));
}

TEST_F(ManufacturerManagerUpdate, fileThatIsNotNewerChangesNothing)
{
    have(record(1, "one", kOlder));
    const std::string former = test::readFile(dataFile());
    for (const char* stamp : {kNow, kOlder, "not-a-date-time", "yesterday", "", "-infinity"}) {
        serve(stamp, record(1, "ONE", kNewer, "a.png"));
        refresh();
        EXPECT_EQ(names(), "1:one ") << stamp;
        EXPECT_EQ(manager().getLastModified(), time(kNow)) << stamp;
        EXPECT_EQ(test::readFile(dataFile()), former) << stamp;
        EXPECT_THAT(files(), ElementsAre("manufacturer_data.json")) << stamp;
    }
    EXPECT_THAT(askedLogos(), IsEmpty());
}

TEST_F(ManufacturerManagerUpdate, fileWithoutATimeIsOfNow)
{
    have(record(1, "one", kOlder));
    serve(FaultReply::ok("{\"Default_Text\": \"d\"}"));
    refresh();
    EXPECT_EQ(names(), "") << "readable, newer, and without records";
    EXPECT_EQ(manager().getDefaultText(), "d");
}

TEST_F(ManufacturerManagerUpdate, answerThatCannotBeReadChangesNothing)
{
    have(record(1, "one", kOlder));
    const std::string former = test::readFile(dataFile());
    const std::string good = document(kNewer, record(1, "ONE", kNewer));
    const FaultReply replies[] = {
        FaultReply::ok("<html><body>Please log in</body></html>"),
        FaultReply::ok(""),
        FaultReply::ok("[]"),
        FaultReply::ok(good.substr(0, good.size() / 2)),
        FaultReply::ok(document(kNewer, ", \"Manufacturer\": {\"Id\": \"1\"}")),
        FaultReply::ok(document(kNewer, ", \"Manufacturer\": {\"Id\": 2147483648}")),
        FaultReply::ok(document(kNewer, ", \"Manufacturer\": 5")),
        FaultReply::ok("{\"Last_Modified\": 5}"),
        FaultReply::status(404, good),
        FaultReply::status(403, good),
        FaultReply::status(204),
        FaultReply::ok(good).cutBodyAt(good.size() / 2),
        FaultReply::ok(good).cutAt(0),
    };
    for (const FaultReply& reply : replies) {
        serve(reply);
        refresh();
        EXPECT_EQ(names(), "1:one ");
        EXPECT_EQ(manager().getDefaultText(), kNow);
        EXPECT_EQ(manager().getLastModified(), time(kNow));
        EXPECT_EQ(test::readFile(dataFile()), former);
        EXPECT_THAT(files(), ElementsAre("manufacturer_data.json"));
    }
    EXPECT_TRUE(mHost.messages().empty());
}

TEST_F(ManufacturerManagerUpdate, unreadablePageNeverEmptiesATableWithoutADate)
{
    writeDataFile(document("some day", record(1, "one", kOlder)));
    serve(FaultReply::ok("<html></html>"));
    refresh();
    EXPECT_EQ(names(), "1:one ");
    serve(FaultReply::ok(document(kNewer, ", \"Manufacturer\": 5")));
    refresh();
    EXPECT_EQ(names(), "1:one ");
    serve(kNewer, record(1, "ONE", kNewer));
    refresh();
    EXPECT_EQ(names(), "1:ONE ");
}

TEST_F(ManufacturerManagerUpdate, serviceThatDoesNotAnswerChangesNothing)
{
    have(record(1, "one", kOlder));
    for (const std::string url : {"http://127.0.0.1:1/data", "", "no address", "file:///etc/passwd"})
        manager().checkForManufacturerUpdates(url, "http://127.0.0.1:1/logo?");
    EXPECT_EQ(names(), "1:one ");
    EXPECT_THAT(files(), ElementsAre("manufacturer_data.json"));
}

TEST_F(ManufacturerManagerUpdate, leftoverOfAnEarlierRefreshIsRemoved)
{
    have("");
    haveFile("manufacturer_data_temp.json", document(kNewer, record(1, "stale", kNewer)));
    ASSERT_EQ(chmod(dataPath("manufacturer_data_temp.json").toNativeString().c_str(), 0444), 0);
    serve(FaultReply::status(404));
    refresh();
    EXPECT_EQ(names(), "");
    EXPECT_THAT(files(), ElementsAre("manufacturer_data.json"));
}

TEST_F(ManufacturerManagerUpdate, logosOfNewAndNewerRecordsAreFetched)
{
    have(record(1, "newer", kOlder, "old1.png") + record(2, "equal", kOlder, "old2.png") +
         record(3, "older", kNewer, "old3.png"));
    for (const char* logo : {"old1.png", "old2.png", "old3.png"})
        haveFile(logo, "old");
    serve(kNewer, record(9, "new", kOlder, "new9.png") + record(1, "newer", kNow, "new1.png") +
                      record(2, "equal", kOlder, "new2.png") + record(3, "older", kNow, "new3.png"));
    for (const char* logo : {"new1.png", "new2.png", "new3.png", "new9.png"})
        serveLogo(logo, "new");
    refresh();
    EXPECT_THAT(askedLogos(), ElementsAre("new1.png", "new9.png")) << "in the order of the ids";
    EXPECT_THAT(files(), UnorderedElementsAre("manufacturer_data.json", "new1.png", "new9.png", "old2.png",
                                              "old3.png"));
    EXPECT_EQ(test::readFile(dataPath("new1.png")), "new");
    EXPECT_EQ(manager().getManufacturer(3).getLastModified(), time(kNow))
        << "the record is replaced all the same";
    EXPECT_EQ(manager().getManufacturer(3).getManufacturerLogoName().toNativeString(), "new3.png");
}

TEST_F(ManufacturerManagerUpdate, logoOfTheSameNameIsReplaced)
{
    have(record(1, "one", kOlder, "a.png"));
    haveFile("a.png", "old");
    serve(kNewer, record(1, "one", kNewer, "a.png"));
    serveLogo("a.png", "new");
    refresh();
    EXPECT_EQ(test::readFile(dataPath("a.png")), "new");
}

TEST_F(ManufacturerManagerUpdate, recordsWithoutATimeAreNotNewer)
{
    have(record(1, "one", "not-a-date-time", "a.png") + record(2, "two", kOlder, "b.png") +
         record(3, "three", "not-a-date-time", "c.png"));
    serve(kNewer, record(1, "one", "not-a-date-time", "a.png") +
                      record(2, "two", "not-a-date-time", "b.png") + record(3, "three", kOlder, "c.png"));
    refresh();
    EXPECT_THAT(askedLogos(), ElementsAre("c.png"));
}

TEST_F(ManufacturerManagerUpdate, failedLogoIsLeftMissingUnlessItHasTheOldName)
{
    have(record(1, "one", kOlder, "a.png"));
    haveFile("a.png", "old");
    serve(kNewer, record(1, "one", kNewer, "a.png") + record(2, "two", kNewer, "b.png") +
                      record(3, "three", kNewer, "c.png"));
    mServer.on("/logo?x=1&logo-path=b.png", FaultReply::ok("half a picture").cutAt(50));
    serveLogo("c.png", "picture");
    refresh();
    EXPECT_EQ(names(), "1:one 2:two 3:three ");
    EXPECT_THAT(files(), UnorderedElementsAre("a.png", "c.png", "manufacturer_data.json"));
    EXPECT_EQ(test::readFile(dataPath("a.png")), "old") << "until its successor has arrived";
    EXPECT_TRUE(mHost.messages().empty());
}

TEST_F(ManufacturerManagerUpdate, anOldLogoThatAnotherRecordNamesStays)
{
    have(record(1, "one", kOlder, "common.png") + record(2, "two", kOlder, "./common.png") +
         record(3, "three", kOlder, "own.png"));
    haveFile("common.png", "shared");
    haveFile("own.png", "own");
    serve(kNewer, record(1, "one", kNewer, "one.png") + record(2, "two", kOlder, "x/../common.png") +
                      record(3, "three", kNewer, "three.png"));
    refresh();
    EXPECT_THAT(files(), UnorderedElementsAre("manufacturer_data.json", "common.png"));
}

/// Fails every download, but records the address of the data and whether the target existed before.
class WatchingCurl : public test::DeadCurl
{
public:
    using test::DeadCurl::download_to_location;
    bool download_to_location(const std::string& url, const fileString& target, std::string&) override
    {
        mUrl = url;
        mFoundFormer = target.pathExists();
        return false;
    }

    std::string mUrl;
    bool mFoundFormer = true;
};

TEST_F(ManufacturerManagerUpdate, theDataIsAskedForInWindows1252AfterAFormerFileWasRemoved)
{
    have("");
    haveFile("manufacturer_data_temp.json", "left by a process that died");
    const WatchingCurl service;
    manager().checkForManufacturerUpdates("http://x/Möbel?", "http://x/logo?");
    EXPECT_EQ(service.mUrl, "http://x/M\xF6"
                            "bel?");
    EXPECT_FALSE(service.mFoundFormer);
}

/// Serves the data and every logo except one, for which it throws.
class ThrowingCurl : public test::DeadCurl
{
public:
    explicit ThrowingCurl(std::string data) : mData(std::move(data)) {}

    using test::DeadCurl::download_to_location;
    bool download_to_location(const std::string& url, const fileString& target, std::string&) override
    {
        if (url.find("bad.png") != std::string::npos)
            throw std::runtime_error("no such logo");
        const bool isData = url.find("/data") != std::string::npos;
        test::writeFile(target.toNativeString(), isData ? mData : "picture");
        return true;
    }

private:
    std::string mData;
};

TEST_F(ManufacturerManagerUpdate, aLogoWhoseDownloadThrowsCountsAsThatLogosFailure)
{
    have(record(1, "one", kOlder));
    const ThrowingCurl service(
        document(kNewer, record(2, "two", kNewer, "bad.png") + record(3, "three", kNewer, "good.png")));
    refresh();
    EXPECT_EQ(names(), "2:two 3:three ");
    EXPECT_THAT(files(), UnorderedElementsAre("good.png", "manufacturer_data.json"));
}

TEST_F(ManufacturerManagerUpdate, addressesAreWindows1252)
{
    have(record(1, "one", kOlder, "Möbel alt.png"));
    haveFile("Möbel alt.png", "old");
    serve(kNewer, record(1, "one", kNewer, "Möbel neu.png"));
    serveLogo("M%F6bel%20neu.png", "new");
    refresh();
    EXPECT_THAT(askedLogos(), ElementsAre("M%F6bel%20neu.png"));
    EXPECT_THAT(files(), UnorderedElementsAre("Möbel neu.png", "manufacturer_data.json"));
}

TEST_F(ManufacturerManagerUpdate, hostileLogoNamesTouchNothing)
{
    const std::string outside = mHost.folder().write("outside.png", "precious").toNativeString();
    haveFile("kept.png", "kept");
    const std::string names[] = {"",
                                 "../outside.png",
                                 "a/../../outside.png",
                                 "../../x",
                                 "..",
                                 ".",
                                 "./",
                                 "a/..",
                                 "/",
                                 outside,
                                 "kept.png/",
                                 "manufacturer_data.json",
                                 "./manufacturer_data.json",
                                 "manufacturer_data.json.bak",
                                 "Manufacturer_Data.JSON",
                                 "MANUFACTURER_DATA.JSON",
                                 "manufacturer_data_temp.json",
                                 ".manufacturer_data.json.0123456789abcdef.orv-new",
                                 ".orv-new",
                                 "kept.png\\u0000.txt"};
    mServer.otherwise([](const test::FaultRequest&) { return FaultReply::ok("hostile"); });
    for (const std::string& name : names) {
        have(record(1, "one", kOlder, "kept.png") + record(2, "two", kOlder, name));
        // A bad logo name changes nothing else. When a good name follows, the file of the bad name is not
        // deleted.
        serve(kNewer, record(1, "ONE", kNewer, name) + record(3, "three", kNewer, name) +
                          record(2, "TWO", kNewer, "two.png"));
        refresh();
        EXPECT_EQ(ManufacturerFixture::names(), "1:ONE 2:TWO 3:three ") << name;
        EXPECT_EQ(test::readFile(outside), "precious") << name;
        EXPECT_EQ(test::readFile(dataPath("kept.png")), "kept") << name;
        EXPECT_THAT(files(), UnorderedElementsAre("kept.png", "manufacturer_data.json", "two.png")) << name;
        EXPECT_THAT(test::listTree(mHost.folder().path()), testing::Not(testing::Contains("x"))) << name;
    }
    for (const std::string& logo : askedLogos())
        EXPECT_EQ(logo, "two.png");
}

TEST_F(ManufacturerManagerUpdate, logoInAFolderBelowIsAllowed)
{
    have("");
    haveFile("logos/old.png", "old");
    serve(kNewer, record(1, "one", kNewer, "logos/a.png") + record(2, "two", kNewer, "x/../logos/b.png"));
    serveLogo("logos/a.png", "a");
    refresh();
    EXPECT_EQ(test::readFile(dataPath("logos/a.png")), "a");
}

TEST_F(ManufacturerManagerUpdate, unwritableDataFileIsToldAndTheTableTakenOver)
{
    have(record(1, "one", kOlder));
    const std::string former = test::readFile(dataFile());
    ASSERT_EQ(chmod(dataFile().toNativeString().c_str(), 0444), 0);
    serve(kNewer, record(1, "ONE", kNewer));
    refresh();
    EXPECT_EQ(names(), "1:ONE ");
    EXPECT_EQ(test::readFile(dataFile()), former);
    EXPECT_EQ(mHost.messages().size(), 1U);
}
