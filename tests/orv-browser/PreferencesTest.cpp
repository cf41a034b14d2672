#include <atomic>
#include <map>

#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QDir>
#include <QFile>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QSpinBox>
#include <QTabWidget>
#include <QTest>
#include <QTimer>

#include <gmock/gmock.h>

#include "OrvHost/Settings.h"
#include "apps/orv-browser/Appearance.h"
#include "tests/orv-browser/BrowserTest.h"
#include "tests/orv-browser/CatalogMaker.h"
#include "tests/support/FaultServer.h"

namespace {

using testing::Not;
using testing::SizeIs;

void press(QDialog& dialog, QDialogButtonBox::StandardButton button)
{
    QTest::mouseClick(dialog.findChild<QDialogButtonBox*>()->button(button), Qt::LeftButton);
}

QLineEdit& line(QDialog& dialog, const char* name)
{
    return *dialog.findChild<QLineEdit*>(name);
}

class BrowserPreferencesTest : public test::BrowserTest
{
protected:
    BrowserPreferencesTest() { test::CatalogMaker(inRoot("core/Doors.orvlib"), "doors"); }
    ~BrowserPreferencesTest() override { Appearance::apply(Appearance::kSystem); }
};

} // namespace

TEST_F(BrowserPreferencesTest, everyFieldIsKeptForTheNextStart)
{
    const std::map<const char*, QString> entered = {
        {"url", "http://127.0.0.1:9/redirect"},
        {"product", "Planner"},
        {"productVersion", "7.2"},
        {"bonus", "Garden Party.orvlib; Holiday D\u00e9cor.orvlib"},
        {"manufacturer", "Oakline Cabinets.orvlib"},
        {"manufacturerDataUrl", "http://127.0.0.1:9/manufacturers?"},
        {"manufacturerLogoUrl", "http://127.0.0.1:9/logos?"},
        {"proxy", "http://127.0.0.1:9"},
        {"certificates", "/etc/ssl/certs"},
    };
    const std::map<const char*, int> numbers = {{"retries", 1},         {"connections", 4},
                                                {"limitRate", 250},     {"diskReserve", 4000},
                                                {"historyVersions", 2}, {"historyBytes", 1000}};
    open();
    inDialog([&] { trigger("editPreferences"); },
             [&](QDialog& dialog) {
                 for (const auto& [name, text] : entered)
                     line(dialog, name).setText(" " + text + " ");
                 for (const auto& [name, number] : numbers)
                     dialog.findChild<QSpinBox*>(name)->setValue(number);
                 dialog.findChild<QCheckBox*>("checkAtStart")->click();
                 dialog.findChild<QSpinBox*>("checkAgeHours")->setValue(6);
                 dialog.findChild<QComboBox*>("colours")->setCurrentIndex(2);
                 press(dialog, QDialogButtonBox::Ok);
             });
    close();
    const BrowserSettings kept = BrowserSettings::load(fileString(inRoot("")));
    EXPECT_TRUE(kept.checkAtStart);
    EXPECT_EQ(kept.checkAgeHours, 6);
    EXPECT_EQ(kept.colours, Appearance::kDark);
    test::writeFile(inRoot("browser.json"), [&] { // prevents a check
        std::string text = test::readFile(inRoot("browser.json"));
        return text.replace(text.find("true"), 4, "false");
    }());
    open();
    inDialog([&] { trigger("editPreferences"); },
             [&](QDialog& dialog) {
                 for (const auto& [name, text] : entered)
                     EXPECT_EQ(line(dialog, name).text(), text) << name;
                 for (const auto& [name, number] : numbers)
                     EXPECT_EQ(dialog.findChild<QSpinBox*>(name)->value(), number) << name;
                 EXPECT_EQ(dialog.findChild<QComboBox*>("colours")->currentIndex(), 2);
                 dialog.reject();
             });
}

TEST_F(BrowserPreferencesTest, cancelledDialogKeepsWhatWas)
{
    test::writeFile(inRoot("settings.json"), R"({"url": "http://127.0.0.1:9/old"})");
    open();
    inDialog([&] { trigger("editPreferences"); },
             [](QDialog& dialog) {
                 line(dialog, "url").setText("http://127.0.0.1:9/new");
                 press(dialog, QDialogButtonBox::Cancel);
             });
    EXPECT_EQ(test::readFile(inRoot("settings.json")), R"({"url": "http://127.0.0.1:9/old"})");
    EXPECT_FALSE(QFile::exists(QString::fromStdString(inRoot("browser.json"))));
}

TEST_F(BrowserPreferencesTest, textThatCannotBeIsNotTaken)
{
    open();
    const auto enter = [this](QDialog& dialog, const char* field, const QString& text) {
        QString told;
        line(dialog, field).setText(text);
        QTimer::singleShot(0, [&] {
            ASSERT_TRUE(waitFor([&] { return QApplication::activeModalWidget() != &dialog; }));
            auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
            ASSERT_NE(box, nullptr);
            told = box->text();
            box->accept();
        });
        press(dialog, QDialogButtonBox::Ok);
        line(dialog, field).clear();
        return told;
    };
    inDialog([&] { trigger("editPreferences"); },
             [&](QDialog& dialog) {
                 const QString end =
                     " is no address of a service. An address begins with http:// or https:// "
                     "and the name of a host.";
                 for (const char* field : {"url", "manufacturerDataUrl", "manufacturerLogoUrl"})
                     EXPECT_EQ(enter(dialog, field, " foo "), QString::fromUtf8("“foo”") + end) << field;
                 for (const QString text : {"ftp://127.0.0.1/redirect", "http://", "127.0.0.1:9/redirect"})
                     EXPECT_TRUE(enter(dialog, "url", text).endsWith(end)) << text.toStdString();
                 EXPECT_EQ(enter(dialog, "proxy", "my proxy"),
                           QString::fromUtf8("“my proxy” is no proxy, such as http://proxy.example:3128."));
                 EXPECT_EQ(dialog.findChild<QTabWidget*>()->currentIndex(), 1);
                 for (const char* field : {"bonus", "manufacturer"})
                     EXPECT_EQ(enter(dialog, field, "Doors; ../outside"),
                               QString::fromUtf8("“../outside.orvlib” is no name of a catalog."));
                 EXPECT_TRUE(dialog.isVisible());
                 line(dialog, "url").setText("HTTPS://127.0.0.1:9/redirect");
                 press(dialog, QDialogButtonBox::Ok);
             });
    EXPECT_EQ(OrvHost::Settings::load(fileString(inRoot(""))).values().url, "HTTPS://127.0.0.1:9/redirect");
}

TEST_F(BrowserPreferencesTest, addressThatIsNoneIsToldAndNothingIsAsked)
{
    open("foo");
    trigger("checkForUpdates");
    EXPECT_TRUE(summary().startsWith(QString::fromUtf8("“foo” is no address of a service.")))
        << summary().toStdString();
    EXPECT_TRUE(child<QAction>("checkForUpdates").isEnabled());
}

TEST_F(BrowserPreferencesTest, serviceThatIsBackIsAskedAtOnceWhenTheUserWantsIt)
{
    std::atomic<bool> isDown = true;
    test::FaultServer server;
    server.otherwise([&](const test::FaultRequest& request) {
        if (isDown)
            return test::FaultReply::ok("").cutAt(0).reset();
        return request.path() == "/redirect" ? test::FaultReply::redirect("/content?")
                                             : test::FaultReply::status(404);
    });
    open(QString::fromStdString(server.url("/redirect")));
    const auto check = [this] {
        trigger("checkForUpdates");
        ASSERT_TRUE(waitFor([&] { return child<QAction>("checkForUpdates").isEnabled(); }));
    };
    for (int round = 0; round < 3; ++round) {
        check();
        EXPECT_TRUE(summary().startsWith("The catalog service cannot be reached;"))
            << summary().toStdString();
    }
    isDown = false;
    check();
    EXPECT_FALSE(summary().startsWith("The catalog service cannot be reached;")) << summary().toStdString();
    EXPECT_THAT(server.requestsFor("/content"), Not(SizeIs(0)));
}

TEST_F(BrowserPreferencesTest, cancelBeforeTheFirstAnswerIsNoError)
{
    test::FaultServer server;
    server.on("/redirect", test::FaultReply::silence());
    open(QString::fromStdString(server.url("/redirect")));
    trigger("checkForUpdates");
    ASSERT_TRUE(server.waitForRequests(1));
    trigger("cancelUpdate");
    ASSERT_TRUE(waitFor([&] { return child<QAction>("checkForUpdates").isEnabled(); }));
    EXPECT_EQ(summary(), "The update was cancelled.");
    EXPECT_FALSE(child<QWidget>("messageBar").isVisible());
}

TEST_F(BrowserPreferencesTest, fileOfAnotherFormMeansTheDefaults)
{
    for (const char* text : {"", "[1, 2]", "{\"colours\": 5, \"checkAtStart\": \"yes\"", "\xFF\xFE",
                             "{\"colours\": [], \"checkAtStart\": 1}"}) {
        test::writeFile(inRoot("browser.json"), text);
        const BrowserSettings settings = BrowserSettings::load(fileString(inRoot("")));
        EXPECT_EQ(settings.colours, "system") << text;
        EXPECT_FALSE(settings.checkAtStart) << text;
    }
}

TEST_F(BrowserPreferencesTest, preferencesThatCannotBeWrittenAreToldToTheUserAndNoneIsKept)
{
    const std::string own = R"({"checkAgeHours": 6, "checkAtStart": false, "colours": "system"})";
    const std::string shared = R"({"product": "Former"})";
    for (const std::string blocked : {"browser.json", "settings.json"}) {
        test::writeFile(inRoot("browser.json"), own);
        test::writeFile(inRoot("settings.json"), shared);
        open();
        QDir().remove(QString::fromStdString(inRoot(blocked)));
        // A folder takes the place of the file.
        ASSERT_TRUE(QDir().mkpath(QString::fromStdString(inRoot(blocked + "/in the way"))));
        QString told;
        inDialog([&] { trigger("editPreferences"); },
                 [&](QDialog& dialog) {
                     line(dialog, "product").setText("Planner");
                     dialog.findChild<QComboBox*>("colours")->setCurrentIndex(2);
                     QTimer::singleShot(0, [&] {
                         ASSERT_TRUE(waitFor([&] { return QApplication::activeModalWidget() != &dialog; }));
                         auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
                         ASSERT_NE(box, nullptr);
                         told = box->text();
                         box->accept();
                     });
                     press(dialog, QDialogButtonBox::Ok);
                 });
        EXPECT_TRUE(told.startsWith("The preferences were not saved: ")) << told.toStdString();
        close();
        if (blocked == "browser.json")
            EXPECT_EQ(test::readFile(inRoot("settings.json")), shared);
        else
            EXPECT_EQ(test::readFile(inRoot("browser.json")), own);
        QDir(QString::fromStdString(inRoot(blocked))).removeRecursively();
    }
}

TEST_F(BrowserPreferencesTest, preferencesThatCouldNotBeReadAtTheStartAreNotReplacedByDefaults)
{
    const QString file = QString::fromStdString(inRoot("browser.json"));
    ASSERT_TRUE(QDir().mkpath(file)); // a folder in place of the file
    open();
    ASSERT_TRUE(QDir().rmdir(file));
    test::writeFile(inRoot("browser.json"), R"({"checkAgeHours": 6})");
    inDialog([&] { trigger("editPreferences"); },
             [&](QDialog& dialog) {
                 dialog.findChild<QComboBox*>("colours")->setCurrentIndex(2);
                 press(dialog, QDialogButtonBox::Ok);
             });
    close();
    const BrowserSettings settings = BrowserSettings::load(fileString(inRoot("")));
    EXPECT_EQ(settings.checkAgeHours, 6);
    EXPECT_EQ(settings.colours, "dark");
}
