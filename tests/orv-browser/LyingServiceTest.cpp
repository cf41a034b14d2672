// A service that sends false content, is down, is slow, and recovers. The installed files stay, the user sees
// the reason, and the next check succeeds.
#include <filesystem>

#include <QAction>
#include <QLabel>
#include <QTest>

#include <gmock/gmock.h>

#include "tests/orv-browser/BrowserTest.h"
#include "tests/orv-browser/CatalogMaker.h"
#include "tests/support/ContentService.h"

namespace {

using test::FaultReply;
using test::FaultRequest;

const char* const kWebPage = "<html><body>Please log in</body></html>";

class BrowserLyingServiceTest : public test::BrowserTest
{
protected:
    BrowserLyingServiceTest()
    {
        service.offer("Orv_Core_Content_Index.txt", "Doors.orvlib\nLamps.orvlib\n");
        offer("Doors", "Gate");
        offer("Lamps", "Torch");
        test::writeFile(inRoot("settings.json"), "{\"url\": \"" + service.redirect() + "\", \"retries\": 0}");
        open();
        update();
        EXPECT_EQ(names(), QStringList({"Gate", "Torch"}));
        content = offer("Doors", "Portal");
    }

    std::string offer(const std::string& name, const std::string& item)
    {
        const std::string file = folder().path() + "/" + name + ".orvlib";
        std::filesystem::remove(file);
        {
            test::CatalogMaker maker(file, name);
            maker.addItem(maker.addFolder("All"), {item});
        }
        const std::string made = test::readFile(file);
        service.offer(name + ".orvlib", made);
        return made;
    }
    void update()
    {
        trigger("checkForUpdates");
        ASSERT_TRUE(waitFor([&] { return child<QAction>("checkForUpdates").isEnabled(); }));
        ASSERT_TRUE(settle());
    }
    /// Checks for updates. The installed files must stay, and the window must show the reason.
    void expectRefusal(const QString& reason)
    {
        update();
        EXPECT_TRUE(summary().contains(reason)) << summary().toStdString();
        EXPECT_EQ(names(), QStringList({"Gate", "Torch"}));
        EXPECT_TRUE(child<QWidget>("resultCard").isVisible());
        EXPECT_TRUE(child<QWidget>("resultRetry").isVisible());
        for (const std::string& file : test::listTree(inRoot("core")))
            EXPECT_EQ(file.find(".download"), std::string::npos) << file;
    }
    /// Makes the service sound again and expects a successful check.
    void expectRecovery()
    {
        service.offer("Doors.orvlib", content);
        service.spoilWith(nullptr);
        update();
        EXPECT_EQ(summary(), "Updated: Doors.");
        EXPECT_EQ(names(), QStringList({"Portal", "Torch"}));
    }

    test::ContentService service;
    std::string content; ///< of the new catalog
};

/// Spoils the responses to GET requests for catalogs, and keeps those to HEAD requests.
test::ContentService::Spoiler bodies(const std::function<FaultReply(const FaultReply&)>& spoil)
{
    return [spoil](const FaultReply& sound, const FaultRequest& request) {
        const bool isBody =
            request.method == "GET" && request.target.find("Doors.orvlib") != std::string::npos;
        return isBody ? spoil(sound) : sound;
    };
}

FaultReply page(const FaultReply&)
{
    return FaultReply::ok(kWebPage, {"Content-Type: text/html"});
}

} // namespace

TEST_F(BrowserLyingServiceTest, loginPageForEverythingIsNoService)
{
    service.spoilWith([](const FaultReply& sound, const FaultRequest&) { return page(sound); });
    expectRefusal("answers with web pages (a login page?), not as a catalog service.");
    expectRecovery();
}

TEST_F(BrowserLyingServiceTest, webPageInThePlaceOfACatalogIsNotTaken)
{
    service.spoilWith(bodies(page));
    expectRefusal("answers with web pages (a login page?)");
    expectRecovery();
}

TEST_F(BrowserLyingServiceTest, webPageInThePlaceOfTheIndexIsNotTaken)
{
    service.spoilWith([](const FaultReply& sound, const FaultRequest& request) {
        return request.target.find("Index.txt") != std::string::npos ? page(sound) : sound;
    });
    expectRefusal("web page");
    expectRecovery();
}

TEST_F(BrowserLyingServiceTest, bodyOfAnotherLengthThanAnnouncedIsNotTaken)
{
    service.spoilWith(bodies([](const FaultReply& sound) {
        FaultReply reply = sound;
        return reply.withBody(sound.body() + std::string(512, '\0'));
    }));
    expectRefusal("another version than announced");
    expectRecovery();
}

TEST_F(BrowserLyingServiceTest, bodyOfAnotherVersionThanAnnouncedIsNotTaken)
{
    service.spoilWith(bodies([](const FaultReply& sound) {
        FaultReply reply = sound;
        return reply.withHeader("ETag: \"another\"");
    }));
    expectRefusal("another version than announced");
    expectRecovery();
}

TEST_F(BrowserLyingServiceTest, packedBodyIsNotTaken)
{
    service.spoilWith(bodies([](const FaultReply& sound) { return FaultReply::gzipped(sound.body()); }));
    expectRefusal("Doors.orvlib: ");
    expectRecovery();
}

TEST_F(BrowserLyingServiceTest, bodyThatIsNoDatabaseIsNotTaken)
{
    service.offer("Doors.orvlib", std::string(content.size() + 4096, 'x'));
    expectRefusal("is no database");
    expectRecovery();
}

TEST_F(BrowserLyingServiceTest, bodyThatBreaksOffIsGoneOnWithAtTheNextCheck)
{
    service.spoilWith(bodies([](const FaultReply& sound) {
        FaultReply reply = sound;
        return reply.cutBodyAt(4096);
    }));
    expectRefusal("Doors.orvlib: ");
    expectRecovery();
}

TEST_F(BrowserLyingServiceTest, statusOfAnErrorIsTold)
{
    service.spoilWith(bodies([](const FaultReply&) { return FaultReply::status(503, "busy"); }));
    expectRefusal("Doors.orvlib: HTTP 503");
    expectRecovery();
}

TEST_F(BrowserLyingServiceTest, serviceThatIsDownIsAskedAtOnceWhenItIsBack)
{
    service.spoilWith([](const FaultReply&, const FaultRequest&) { return FaultReply::raw("").reset(); });
    expectRefusal("The catalog service cannot be reached; the library stays as it is.");
    expectRecovery();
}

TEST_F(BrowserLyingServiceTest, slowServiceIsWaitedForAndTheWindowWorksMeanwhile)
{
    service.spoilWith(bodies([](const FaultReply& sound) {
        FaultReply reply = sound;
        return reply.trickle(sound.body().size() / 10, std::chrono::milliseconds(100));
    }));
    trigger("checkForUpdates");
    ASSERT_TRUE(service.waitUntilFetched("Doors.orvlib"));
    select("Torch");
    EXPECT_EQ(detail("detailsTitle"), "Torch");
    ASSERT_TRUE(goTo({"Core", "Doors"}));
    EXPECT_EQ(names(), QStringList("Gate"));
    ASSERT_TRUE(waitFor([&] { return child<QAction>("checkForUpdates").isEnabled(); }));
    ASSERT_TRUE(settle());
    EXPECT_EQ(summary(), "Updated: Doors.");
    EXPECT_EQ(names(), QStringList("Portal"));
}
