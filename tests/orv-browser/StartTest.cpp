// A user's way from an empty library to the first content: typing an address, checking boxes for what the
// service lists, loading the samples, or dropping archives anywhere.
#include <chrono>

#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QDragEnterEvent>
#include <QFile>
#include <QFileInfo>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QMimeData>
#include <QPushButton>
#include <QRegularExpression>
#include <QTest>
#include <QTreeView>
#include <QUrl>
#include <QWindow>

#include <gmock/gmock.h>

#include "OrvHost/Settings.h"
#include "apps/orv-browser/gallery/GalleryPane.h"
#include "tests/orv-browser/BrowserService.h"
#include "tests/orv-browser/BrowserTest.h"
#include "tests/orv-browser/CatalogMaker.h"
#include "tests/support/FaultServer.h"

namespace {

using test::FaultReply;
using test::FaultRequest;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

class BrowserStartTest : public test::BrowserTest
{
protected:
    ~BrowserStartTest() override { qputenv("PATH", mPath); }

    QLineEdit& address() { return child<QLineEdit>("serviceAddress"); }
    QString state() { return child<QLabel>("serviceState").text(); }
    QPushButton& button(const char* name) { return child<QPushButton>(name); }
    QCheckBox& box(const QString& name) { return child<QCheckBox>(name.toUtf8().constData()); }
    QWidget& cover() { return child<QWidget>("archiveDrop"); }

    void type(const QString& text)
    {
        address().setFocus();
        address().selectAll();
        QTest::keyClicks(&address(), text);
    }
    void type(const std::string& text) { type(QString::fromStdString(text)); }
    bool says(const QString& beginning)
    {
        return waitFor([&] { return state().startsWith(beginning); });
    }
    bool ends()
    {
        return waitFor([&] { return child<QAction>("checkForUpdates").isEnabled(); });
    }
    void tick(const QString& name)
    {
        QTest::mouseClick(&box(name), Qt::LeftButton, {}, QPoint(8, box(name).height() / 2));
    }
    OrvHost::Settings::Values stored() const
    {
        return OrvHost::Settings::load(fileString(inRoot(""))).values();
    }
    /// Sets PATH so that the programs are found, or are not.
    void install(bool areThere)
    {
        qputenv("PATH", areThere ? QFileInfo(ORV_LIBRARY_PROGRAM).path().toUtf8() + ":" + mPath
                                 : QByteArray("/none"));
    }

    /// Sends a drag event to the native window, as the platform does.
    template <class Event>
    bool drag(const QPoint& at, const QMimeData& data)
    {
        Event event(at, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        event.ignore();
        QCoreApplication::sendEvent(window().windowHandle(), &event);
        return event.isAccepted();
    }
    QPoint middleOf(const QWidget& widget) { return widget.mapTo(&window(), widget.rect().center()); }

    QMimeData mData;

private:
    QByteArray mPath = qgetenv("PATH");
};

/// A service whose index lists one core catalog. Tests set its other replies.
class ListedService
{
public:
    ListedService()
    {
        mServer.otherwise([this](const FaultRequest& request) { return answer(request); });
    }

    test::FaultServer& server() { return mServer; }
    std::string url() const { return mServer.url("/redirect"); }

    std::string bonus;
    std::string index = "Doors.orvlib\nReadme.txt\n";

private:
    FaultReply answer(const FaultRequest& request) const
    {
        const auto asks = [&](const char* name) {
            return request.target.find(std::string("library=") + name + "&") != std::string::npos;
        };
        if (request.path() == "/redirect")
            return FaultReply::redirect("/content?");
        if (asks("Orv_Core_Content_Index.txt"))
            return FaultReply::ok(index);
        if (asks("Orv_Bonus_Content_Index.txt") && !bonus.empty())
            return FaultReply::ok(bonus);
        if (asks("Doors.orvlib") || asks("Garden.orvlibz"))
            return FaultReply::file(request, std::string(2'500'000, 'x'), "\"one\"");
        return FaultReply::status(404, "no such file");
    }

    test::FaultServer mServer;
};

} // namespace

TEST_F(BrowserStartTest, addressIsCheckedAsItIsTypedAndTickedCatalogsAreFetched)
{
    test::BrowserService service(folder().path() + "/service");
    open();
    EXPECT_FALSE(button("fetchContent").isEnabled());
    type(service.redirect());
    ASSERT_TRUE(says("The service answers: 14 catalogs, ")) << state().toStdString();
    EXPECT_TRUE(state().endsWith(" MB")) << state().toStdString();
    EXPECT_TRUE(button("fetchContent").isEnabled());
    EXPECT_TRUE(box("Garden Party.orvlib").text().startsWith("Garden Party ("));
    EXPECT_FALSE(box("Garden Party.orvlib").isChecked());
    tick("Garden Party.orvlib");
    tick("Oakline Cabinets.orvlib");
    QTest::keyClick(&address(), Qt::Key_Return);
    ASSERT_TRUE(ends());
    EXPECT_EQ(placesBelow(place({"Bonus"})), QStringList("Garden Party"));
    EXPECT_EQ(placesBelow(place({"Manufacturers"})), QStringList("Oakline Cabinets"));
    EXPECT_EQ(placesBelow(place({"Core"})).size(), 14);
    EXPECT_EQ(stored().url, service.redirect().toStdString());
    EXPECT_THAT(stored().bonus, ElementsAre("Garden Party.orvlib"));
    EXPECT_THAT(stored().manufacturer, ElementsAre("Oakline Cabinets.orvlib"));
}

TEST_F(BrowserStartTest, serviceIsAskedOnceTheUserPauses)
{
    ListedService service;
    open();
    type(service.url());
    EXPECT_THAT(service.server().requests(), IsEmpty());
    ASSERT_TRUE(says("The service answers: 1 catalog, 2.5 MB")) << state().toStdString();
    EXPECT_THAT(service.server().requestsFor("/redirect"), SizeIs(1));
    EXPECT_FALSE(child<QGroupBox>("bonusBoxes").isVisible());
    EXPECT_FALSE(child<QGroupBox>("manufacturerBoxes").isVisible());
}

TEST_F(BrowserStartTest, answerToAFormerAddressIsNeverShown)
{
    ListedService service;
    service.server().on("/slow", FaultReply::status(404).pauseAt(0, std::chrono::milliseconds(700)));
    open();
    type(service.server().url("/slow"));
    ASSERT_TRUE(waitFor([&] { return !service.server().requests().empty(); }));
    EXPECT_EQ(state(), QString::fromUtf8("Asking the service…"));
    type(service.url());
    QStringList seen;
    ASSERT_TRUE(waitFor([&] {
        if (!seen.contains(state()))
            seen << state();
        return state().startsWith("The service answers");
    })) << seen.join('|').toStdString();
    QTest::qWait(800); // the first response has arrived by then
    EXPECT_TRUE(state().startsWith("The service answers")) << state().toStdString();
    EXPECT_TRUE(seen.filter("No catalogs").isEmpty()) << seen.join('|').toStdString();
}

TEST_F(BrowserStartTest, textThatIsNoAddressIsToldAndNothingIsAsked)
{
    open();
    for (const QString text : {"foo", "http://", "ftp://127.0.0.1/redirect"}) {
        type(text);
        EXPECT_TRUE(state().startsWith(QString::fromUtf8("“%1” is no address").arg(text)));
        EXPECT_EQ(address().accessibleDescription(), state());
        EXPECT_FALSE(button("fetchContent").isEnabled());
    }
    QTest::keyClick(&address(), Qt::Key_Return);
    EXPECT_TRUE(child<QAction>("checkForUpdates").isEnabled());
    EXPECT_FALSE(QFile::exists(QString::fromStdString(inRoot("settings.json"))));
}

TEST_F(BrowserStartTest, serviceThatIsDownMayBeTriedAllTheSame)
{
    std::string url;
    {
        test::FaultServer gone;
        url = gone.url("/redirect");
    }
    open();
    type(url);
    ASSERT_TRUE(says("No catalogs can be fetched from there: ")) << state().toStdString();
    EXPECT_TRUE(button("fetchContent").isEnabled());
    QTest::mouseClick(&button("fetchContent"), Qt::LeftButton);
    ASSERT_TRUE(ends());
    EXPECT_TRUE(summary().startsWith("The catalog service cannot be reached;")) << summary().toStdString();
    EXPECT_TRUE(button("fetchContent").isVisible());
    EXPECT_EQ(stored().url, url);
}

TEST_F(BrowserStartTest, loginPageIsNoService)
{
    test::FaultServer portal;
    portal.otherwise([](const FaultRequest&) {
        return FaultReply::ok("<html>Please log in</html>", {"Content-Type: text/html"});
    });
    open();
    type(portal.url("/redirect"));
    ASSERT_TRUE(says("No catalogs can be fetched from there: ")) << state().toStdString();
    EXPECT_TRUE(state().contains("web pages (a login page?)")) << state().toStdString();
}

TEST_F(BrowserStartTest, serviceWithoutCatalogsIsToldApart)
{
    ListedService service;
    service.index = "Readme.txt\n";
    open();
    type(service.url());
    EXPECT_TRUE(says("The service answers, but it has no catalogs.")) << state().toStdString();
}

TEST_F(BrowserStartTest, listOfStrangeLinesOffersWhatIsThereOnly)
{
    ListedService service;
    service.bonus =
        "Garden.orvlib\r\nGarden.orvlibz\n../Outside.orvlib\n<b>x</b>.orvlib\nMissing.orvlib\nnotes\n";
    open();
    type(service.url());
    ASSERT_TRUE(says("The service answers"));
    ASSERT_THAT(window().findChildren<QCheckBox*>(QRegularExpression("orvlib$")), SizeIs(1));
    EXPECT_EQ(box("Garden.orvlib").text(), "Garden (2.5 MB)");
}

TEST_F(BrowserStartTest, settingsFillThePageAndWhatTheyNameIsTicked)
{
    ListedService service;
    service.bonus = "Garden.orvlib\n";
    test::writeFile(inRoot("settings.json"),
                    "{\"url\": \"" + service.url() + "\", \"bonus\": [\"Garden.orvlib\", \"Other.orvlib\"]}");
    open();
    EXPECT_EQ(address().text(), QString::fromStdString(service.url()));
    ASSERT_TRUE(says("The service answers")) << state().toStdString();
    EXPECT_TRUE(box("Garden.orvlib").isChecked());
    tick("Garden.orvlib");
    QTest::mouseClick(&button("fetchContent"), Qt::LeftButton);
    ASSERT_TRUE(ends());
    EXPECT_THAT(stored().bonus, ElementsAre("Other.orvlib")); // the service does not list it
}

TEST_F(BrowserStartTest, typedAddressGoesBeforeTheCommandLine)
{
    ListedService service;
    open("http://127.0.0.1:9/old");
    EXPECT_EQ(address().text(), "http://127.0.0.1:9/old");
    type(service.url());
    QTest::mouseClick(&button("fetchContent"), Qt::LeftButton);
    ASSERT_TRUE(ends());
    EXPECT_THAT(service.server().requestsFor("/redirect"), SizeIs(1));
    EXPECT_EQ(stored().url, service.url());
}

TEST_F(BrowserStartTest, closingWhileTheServiceIsAskedTakesNoTime)
{
    test::FaultServer server;
    server.on("/redirect", FaultReply::silence());
    open();
    type(server.url("/redirect"));
    ASSERT_TRUE(waitFor([&] { return !server.requests().empty(); }));
    const auto start = std::chrono::steady_clock::now();
    close();
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(3));
}

TEST_F(BrowserStartTest, tabGoesFromTheAddressOverTheBoxesToTheButtons)
{
    install(true);
    ListedService service;
    service.bonus = "Garden.orvlib\n";
    open();
    type(service.url());
    ASSERT_TRUE(says("The service answers"));
    QStringList stops;
    for (int step = 0; step < 4; ++step) {
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
        stops << QApplication::focusWidget()->objectName();
    }
    EXPECT_EQ(stops, QStringList({"Garden.orvlib", "fetchContent", "importFirst", "trySamples"}));
}

TEST_F(BrowserStartTest, emptyPageDuringTheFirstFetchSaysThatTheCatalogsComeAndOffersNothing)
{
    test::FaultServer server;
    server.on("/redirect", FaultReply::silence());
    open(QString::fromStdString(server.url("/redirect")));
    ASSERT_TRUE(button("fetchContent").isVisible());
    QTest::mouseClick(&button("fetchContent"), Qt::LeftButton);
    ASSERT_TRUE(server.waitForRequests(1));
    EXPECT_EQ(child<QLabel>("firstStartText").text(),
              "The catalogs are on their way. Each one appears as soon as it is here.");
    for (const char* offer : {"fetchContent", "importFirst"})
        EXPECT_FALSE(button(offer).isVisible()) << offer;
    EXPECT_FALSE(address().isVisible());
    trigger("cancelUpdate");
    ASSERT_TRUE(ends());
    EXPECT_TRUE(button("fetchContent").isVisible());
    EXPECT_TRUE(button("fetchContent").isEnabled());
    EXPECT_EQ(summary(), "The update was cancelled.");
}

TEST_F(BrowserStartTest, samplesFillTheLibraryAndChangeNoSetting)
{
    install(true);
    open();
    ASSERT_TRUE(button("trySamples").isVisible());
    QTest::mouseClick(&button("trySamples"), Qt::LeftButton);
    EXPECT_FALSE(address().isVisible());
    ASSERT_TRUE(waitFor([&] { return summary().startsWith("Updated: "); })) << summary().toStdString();
    EXPECT_EQ(placesBelow(place({"Core"})).size(), 14);
    EXPECT_EQ(placesBelow(place({"Bonus"})).size(), 2);
    EXPECT_EQ(placesBelow(place({"Manufacturers"})).size(), 3);
    EXPECT_FALSE(QFile::exists(QString::fromStdString(inRoot("settings.json"))));
    EXPECT_EQ(window().library().settings().url, "");
}

TEST_F(BrowserStartTest, samplesAreOfferedOnlyWhereTheProgramIsInstalled)
{
    install(false);
    open();
    EXPECT_FALSE(button("trySamples").isVisible());
}

TEST_F(BrowserStartTest, samplesThatCannotBeMadeAreToldOf)
{
    const fileString program = folder().write("bin/orv-library", "#!/bin/sh\necho no room >&2\nexit 1\n");
    QFile::setPermissions(QString::fromStdString(program.toNativeString()),
                          QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    qputenv("PATH", (QString::fromStdString(folder().path()) + "/bin:/usr/bin:/bin").toUtf8());
    open();
    QTest::mouseClick(&button("trySamples"), Qt::LeftButton);
    EXPECT_TRUE(says("The sample content could not be made: no room")) << state().toStdString();
    EXPECT_TRUE(button("trySamples").isVisible());
}

TEST_F(BrowserStartTest, archiveMayBeDroppedAnywhereAndTheWholeWindowSaysSo)
{
    const std::string database = folder().path() + "/Kitchen.orvlib";
    {
        test::CatalogMaker kitchen(database, "kitchen");
        kitchen.addItem(kitchen.addFolder("All"), {"Table"});
    }
    const QString archive = QString::fromStdString(folder().path()) + "/Kitchen.orvlibz";
    const std::string texture = folder().write("wood.jpg", "not really a picture").toNativeString();
    test::BrowserService::runProgram(
        {"pack", QString::fromStdString(database), QString::fromStdString(texture), "--output", archive});
    open();
    mData.setUrls({QUrl::fromLocalFile(archive)});
    mData.setText(archive); // a text field would accept this drop
    const QPoint onField = middleOf(address());
    EXPECT_TRUE(drag<QDragEnterEvent>(onField, mData));
    EXPECT_TRUE(cover().isVisible());
    EXPECT_EQ(cover().geometry(), window().rect());
    EXPECT_TRUE(drag<QDragMoveEvent>(onField, mData));
    EXPECT_TRUE(drag<QDragMoveEvent>(middleOf(tree()), mData));
    EXPECT_TRUE(drag<QDropEvent>(middleOf(tree()), mData));
    EXPECT_FALSE(cover().isVisible());
    ASSERT_TRUE(waitFor([&] { return summary() == "Kitchen.orvlibz was imported."; }));
    EXPECT_EQ(address().text(), "");
    EXPECT_TRUE(place({"My libraries", "Kitchen"}).isValid());
}

TEST_F(BrowserStartTest, dragThatLeavesOrIsOfAnotherKindCoversNothing)
{
    open();
    mData.setUrls({QUrl::fromLocalFile("/tmp/letter.txt")});
    drag<QDragEnterEvent>(middleOf(tree()), mData);
    EXPECT_FALSE(cover().isVisible());
    mData.setUrls({QUrl::fromLocalFile("/tmp/Doors.orvlibz")});
    EXPECT_TRUE(drag<QDragEnterEvent>(middleOf(tree()), mData));
    EXPECT_TRUE(drag<QDragMoveEvent>(middleOf(tree()), mData));
    EXPECT_TRUE(cover().isVisible());
    QDragLeaveEvent leave;
    QCoreApplication::sendEvent(window().windowHandle(), &leave);
    EXPECT_FALSE(cover().isVisible());
}
