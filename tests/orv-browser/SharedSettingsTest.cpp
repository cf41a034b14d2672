// The window and the command line share one settings file.
#include <QAction>
#include <QDialogButtonBox>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QProcess>
#include <QPushButton>
#include <QSpinBox>
#include <QTest>
#include <QTimer>

#include <gmock/gmock.h>

#include "OrvHost/Settings.h"
#include "tests/orv-browser/BrowserService.h"
#include "tests/orv-browser/BrowserTest.h"
#include "tests/orv-browser/CatalogMaker.h"
#include "tests/support/FaultServer.h"
#include "tests/support/ScopedEnvironment.h"

namespace {

using testing::Each;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::SizeIs;

class BrowserSharedSettingsTest : public test::BrowserTest
{
protected:
    BrowserSharedSettingsTest() { test::CatalogMaker(inRoot("core/Doors.orvlib"), "doors"); }

    void setByCommand(const QStringList& keyAndValues) const
    {
        const QString root = QString::fromStdString(folder().path() + "/root");
        test::BrowserService::runProgram(QStringList{"--root", root, "settings", "set"} + keyAndValues);
    }
    /// The output of `orv-library settings get`.
    std::string byCommand(const QString& key) const
    {
        QProcess program;
        const QString root = QString::fromStdString(folder().path() + "/root");
        program.start(ORV_LIBRARY_PROGRAM, {"--root", root, "settings", "get", key});
        EXPECT_TRUE(program.waitForFinished());
        return program.readAllStandardOutput().toStdString();
    }
    void check()
    {
        trigger("checkForUpdates");
        ASSERT_TRUE(waitFor([&] { return child<QAction>("checkForUpdates").isEnabled(); }));
    }
    static std::vector<std::string> requestsFor(const test::FaultServer& server, const std::string& catalog)
    {
        std::vector<std::string> targets;
        for (const test::FaultRequest& request : server.requestsFor("/content"))
            if (request.target.find(catalog) != std::string::npos)
                targets.push_back(request.target);
        return targets;
    }
    /// Opens the preferences, changes them and clicks OK.
    void change(const std::function<void(QDialog&)>& enter)
    {
        inDialog([&] { trigger("editPreferences"); },
                 [&](QDialog& dialog) {
                     enter(dialog);
                     QTest::mouseClick(dialog.findChild<QDialogButtonBox*>()->button(QDialogButtonBox::Ok),
                                       Qt::LeftButton);
                 });
    }
};

} // namespace

TEST_F(BrowserSharedSettingsTest, windowAsksAsTheCommandLineSetItWhileItWasOpen)
{
    test::FaultServer server;
    server.on("/redirect", test::FaultReply::redirect("/content?"));
    open();
    setByCommand({"url", QString::fromStdString(server.url("/redirect"))});
    setByCommand({"product", "Planner"});
    setByCommand({"productVersion", "7.2"});
    setByCommand({"bonus", "Garden.orvlib", "Party.orvlib"});
    check();
    const auto doors = requestsFor(server, "Doors");
    EXPECT_THAT(doors, Not(IsEmpty()));
    EXPECT_THAT(doors, Each(HasSubstr("&product=Planner&version=7.2")));
    EXPECT_THAT(requestsFor(server, "Garden"), Not(IsEmpty()));
    EXPECT_THAT(requestsFor(server, "Party"), Not(IsEmpty()));
}

TEST_F(BrowserSharedSettingsTest, retriesOfTheSettingsHold)
{
    test::FaultServer server;
    server.on("/redirect", test::FaultReply::redirect("/content?"));
    server.on("/content", test::FaultReply::status(503));
    setByCommand({"url", QString::fromStdString(server.url("/redirect"))});
    std::size_t asked[2] = {};
    open();
    for (const int retries : {0, 1}) {
        setByCommand({"retries", QString::number(retries)});
        const std::size_t before = requestsFor(server, "Doors").size();
        check();
        asked[retries] = requestsFor(server, "Doors").size() - before;
    }
    EXPECT_GT(asked[1], asked[0]);
    EXPECT_GT(asked[0], 0U);
}

TEST_F(BrowserSharedSettingsTest, proxyOfTheSettingsIsAskedForEverything)
{
    test::FaultServer proxy;
    proxy.otherwise([](const test::FaultRequest&) { return test::FaultReply::status(502); });
    setByCommand({"url", "http://service.invalid/redirect"});
    setByCommand({"retries", "0"});
    setByCommand({"proxy", QString::fromStdString(proxy.url(""))});
    open();
    check();
    EXPECT_GT(proxy.requests().size(), 0U);
    change([](QDialog& dialog) { dialog.findChild<QLineEdit*>("proxy")->clear(); });
}

TEST_F(BrowserSharedSettingsTest, proxyOfTheEnvironmentGoesBeforeTheOneOfTheSettings)
{
    test::FaultServer here;
    test::FaultServer stored;
    for (test::FaultServer* proxy : {&here, &stored})
        proxy->otherwise([](const test::FaultRequest&) { return test::FaultReply::status(502); });
    setByCommand({"url", "http://service.invalid/redirect"});
    setByCommand({"retries", "0"});
    setByCommand({"proxy", QString::fromStdString(stored.url(""))});
    const test::ScopedEnvironment environment("http_proxy", here.url("").c_str());
    open();
    check();
    EXPECT_GT(here.requests().size(), 0U);
    EXPECT_EQ(stored.requests().size(), 0U);
}

TEST_F(BrowserSharedSettingsTest, certificatesOfTheEnvironmentGoBeforeThoseOfTheSettings)
{
    test::FaultServer server;
    setByCommand({"url", QString::fromStdString(server.url("/redirect"))});
    setByCommand({"certificates", "/no/such/file.pem"});
    const test::ScopedEnvironment environment("SSL_CERT_FILE", "/no/such/other.pem");
    open();
    check();
    EXPECT_GT(server.requests().size(), 0U); // the setting is not even looked at
}

TEST_F(BrowserSharedSettingsTest, preferencesSayWhatTheEnvironmentDecides)
{
    const auto notes = [this] {
        QStringList named;
        inDialog([&] { trigger("editPreferences"); },
                 [&](QDialog& dialog) {
                     for (const char* name : {"proxyNote", "certificatesNote"})
                         if (dialog.findChild<QLabel*>(name))
                             named << name;
                     dialog.reject();
                 });
        return named;
    };
    open();
    EXPECT_EQ(notes(), QStringList());
    const test::ScopedEnvironment proxy("all_proxy", "http://127.0.0.1:9");
    EXPECT_EQ(notes(), QStringList{"proxyNote"});
    const test::ScopedEnvironment certificates("SSL_CERT_DIR", "/etc");
    EXPECT_EQ(notes(), QStringList({"proxyNote", "certificatesNote"}));
}

TEST_F(BrowserSharedSettingsTest, commandLineFindsWhatThePreferencesSet)
{
    open();
    change([](QDialog& dialog) {
        dialog.findChild<QLineEdit*>("url")->setText("http://127.0.0.1:9/redirect");
        dialog.findChild<QLineEdit*>("bonus")->setText("Garden; Party");
        dialog.findChild<QSpinBox*>("limitRate")->setValue(500);
        dialog.findChild<QSpinBox*>("historyVersions")->setValue(5);
    });
    EXPECT_EQ(byCommand("url"), "http://127.0.0.1:9/redirect\n");
    EXPECT_EQ(byCommand("bonus"), "Garden.orvlib\nParty.orvlib\n");
    EXPECT_EQ(byCommand("limitRate"), "500000\n");
    EXPECT_EQ(byCommand("historyVersions"), "5\n");
    EXPECT_EQ(OrvHost::Settings::load(fileString(inRoot(""))).stored().size(), 4); // nothing else
}

TEST_F(BrowserSharedSettingsTest, emptiedFieldGoesBackToTheDefault)
{
    setByCommand({"product", "Planner"});
    setByCommand({"retries", "7"});
    open();
    change([](QDialog& dialog) { dialog.findChild<QLineEdit*>("product")->clear(); });
    const QJsonObject stored = OrvHost::Settings::load(fileString(inRoot(""))).stored();
    EXPECT_FALSE(stored.contains("product"));
    EXPECT_EQ(stored["retries"], 7);
}

TEST_F(BrowserSharedSettingsTest, settingsOfAnotherProgramStay)
{
    open();
    change([this](QDialog& dialog) {
        setByCommand({"product", "Planner"});
        setByCommand({"connections", "3"});
        dialog.findChild<QLineEdit*>("productVersion")->setText("7");
    });
    EXPECT_EQ(byCommand("product"), "Planner\n");
    EXPECT_EQ(byCommand("connections"), "3\n");
    EXPECT_EQ(byCommand("productVersion"), "7\n");
}

TEST_F(BrowserSharedSettingsTest, formerSettingsOfTheWindowAreTakenOverOnce)
{
    test::FaultServer server;
    server.on("/redirect", test::FaultReply::redirect("/content?"));
    test::writeFile(inRoot("browser.json"), "{\"serviceUrl\": \"" + server.url("/redirect") +
                                                "\", \"product\": \"Planner\", \"colours\": \"light\"}");
    open();
    check();
    EXPECT_THAT(requestsFor(server, "Doors"), Each(HasSubstr("&product=Planner&")));
    EXPECT_EQ(byCommand("url"), server.url("/redirect") + "\n");
    change([](QDialog& dialog) { dialog.findChild<QLineEdit*>("product")->setText("Other"); });
    EXPECT_EQ(byCommand("product"), "Other\n");
    EXPECT_EQ(BrowserSettings::load(fileString(inRoot(""))).colours, "light");
    EXPECT_THAT(test::readFile(inRoot("browser.json")), Not(HasSubstr("serviceUrl")));
}

TEST_F(BrowserSharedSettingsTest, fileThatCannotBeReadIsToldAndNotWrittenOver)
{
    for (const char* text : {R"({"url": "foo"})", "{", R"({"retries": -1})"}) {
        test::writeFile(inRoot("settings.json"), text);
        open();
        EXPECT_TRUE(summary().startsWith("The settings cannot be read: ")) << summary().toStdString();
        EXPECT_THAT(summary().toStdString(), HasSubstr("settings.json: line 1, column "));
        QString told;
        change([&](QDialog& dialog) {
            dialog.findChild<QLineEdit*>("product")->setText("Planner");
            QTimer::singleShot(0, [&] {
                ASSERT_TRUE(waitFor([&] {
                    const auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
                    return box && box->isVisible();
                }));
                auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
                told = box->text();
                box->accept();
            });
        });
        EXPECT_TRUE(told.startsWith("The preferences were not saved: ")) << told.toStdString();
        EXPECT_EQ(test::readFile(inRoot("settings.json")), text);
        close();
    }
}

TEST_F(BrowserSharedSettingsTest, certificatesThatCannotBeReadAreTold)
{
    setByCommand({"url", "http://127.0.0.1:9/redirect"});
    setByCommand({"certificates", "/no/such/file.pem"});
    open();
    trigger("checkForUpdates");
    EXPECT_TRUE(summary().startsWith("The certificates cannot be read: ")) << summary().toStdString();
    EXPECT_TRUE(child<QAction>("checkForUpdates").isEnabled());
}

TEST_F(BrowserSharedSettingsTest, commandLineGoesBeforeTheFileWhereItSaysSomething)
{
    OrvHost::Settings file;
    file.set("url", {"http://127.0.0.1:9/preferred"});
    file.set("bonus", {"Party.orvlib"});
    const OrvHost::Settings::Values same = ServiceOverrides().over(file.values());
    EXPECT_EQ(same.url, "http://127.0.0.1:9/preferred");
    EXPECT_EQ(same.product, OrvHost::Settings().values().product);
    EXPECT_EQ(same.bonus, std::vector<std::string>{"Party.orvlib"});

    const ServiceOverrides overrides{"http://127.0.0.1:9/now", "Planner", "2", {"Snow", "../out"}, {"Oak"}};
    const OrvHost::Settings::Values now = overrides.over(file.values());
    EXPECT_EQ(now.url, "http://127.0.0.1:9/now");
    EXPECT_EQ(now.product, "Planner");
    EXPECT_EQ(now.productVersion, "2");
    EXPECT_EQ(now.bonus, std::vector<std::string>{"Snow.orvlib"});
    EXPECT_EQ(now.manufacturer, std::vector<std::string>{"Oak.orvlib"});
}
