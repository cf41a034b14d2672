#include "OrvHost/Settings.h"

#include <filesystem>
#include <optional>

#include <QJsonArray>
#include <QJsonDocument>

#include <gmock/gmock.h>

#include "tests/support/ScopedEnvironment.h"
#include "tests/support/TempFolder.h"

using OrvHost::Settings;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

namespace fs = std::filesystem;

namespace {

class SettingsTest : public testing::Test
{
protected:
    Settings load() const { return Settings::load(folder.file("")); }
    void write(const std::string& content) const { folder.write("settings.json", content); }
    /// The reason why a file with this content is refused; empty if it is read.
    std::string refusal(const std::string& content) const
    {
        write(content);
        try {
            load();
        } catch (const std::runtime_error& failure) {
            const std::string start = folder.path() + "/settings.json: ";
            EXPECT_THAT(failure.what(), testing::StartsWith(start));
            return std::string(failure.what()).substr(start.size());
        }
        return {};
    }
    /// The settings that are taken over from this former file.
    QJsonObject takenOver(const std::string& former) const
    {
        fs::remove(folder.path() + "/settings.json");
        folder.write("browser.json", former);
        return load().stored();
    }
    QJsonObject saved() const
    {
        return QJsonDocument::fromJson(
                   QByteArray::fromStdString(test::readFile(folder.file("settings.json"))))
            .object();
    }

    const test::TempFolder folder;
};

} // namespace

TEST_F(SettingsTest, eachKeyHasItsPlaceInTheValues)
{
    Settings settings;
    const std::vector<std::vector<std::string>> given = {{"url", "http://a.example/"},
                                                         {"product", "Product"},
                                                         {"productVersion", "Version"},
                                                         {"bonus", "b.orvlib", "c.orvlib"},
                                                         {"manufacturer", "m.orvlib"},
                                                         {"manufacturerDataUrl", "http://data.example/"},
                                                         {"manufacturerLogoUrl", "http://logo.example/"},
                                                         {"proxy", "proxy.example:1"},
                                                         {"certificates", "/certificates.pem"},
                                                         {"retries", "5"},
                                                         {"connections", "6"},
                                                         {"limitRate", "7000000000"},
                                                         {"metered", "fetch"},
                                                         {"diskReserve", "8000000000"},
                                                         {"historyVersions", "9"},
                                                         {"historyBytes", "10000000000"}};
    EXPECT_TRUE(settings.values().postponesOnMetered);
    for (const std::vector<std::string>& one : given)
        settings.set(one[0], {one.begin() + 1, one.end()});
    settings.save(folder.file(""));
    const Settings::Values values = load().values();
    EXPECT_EQ(values.url, "http://a.example/");
    EXPECT_EQ(values.product, "Product");
    EXPECT_EQ(values.productVersion, "Version");
    EXPECT_THAT(values.bonus, ElementsAre("b.orvlib", "c.orvlib"));
    EXPECT_THAT(values.manufacturer, ElementsAre("m.orvlib"));
    EXPECT_EQ(values.manufacturerDataUrl, "http://data.example/");
    EXPECT_EQ(values.manufacturerLogoUrl, "http://logo.example/");
    EXPECT_EQ(values.proxy, "proxy.example:1");
    EXPECT_EQ(values.certificates, "/certificates.pem");
    EXPECT_EQ(values.retries, 5);
    EXPECT_EQ(values.connections, 6);
    EXPECT_EQ(values.limitRate, 7000000000);
    EXPECT_FALSE(values.postponesOnMetered);
    EXPECT_EQ(values.diskReserve, 8000000000);
    EXPECT_EQ(values.historyVersions, 9);
    EXPECT_EQ(values.historyBytes, 10000000000);
}

TEST_F(SettingsTest, unsetValueHasItsDefault)
{
    EXPECT_EQ(load().stored(), QJsonObject());
    const Settings::Values values = load().values();
    EXPECT_EQ(values.url, "");
    EXPECT_EQ(values.product, "orv-library");
    EXPECT_THAT(values.bonus, IsEmpty());
    EXPECT_EQ(values.retries, 3);
    EXPECT_EQ(values.historyBytes, 2147483648);
    EXPECT_THAT(test::listTree(folder.path()), IsEmpty());
}

TEST_F(SettingsTest, removedValueIsGone)
{
    Settings settings;
    settings.set("retries", {"7"});
    settings.set("connections", {"8"});
    settings.unset("retries");
    settings.unset("retries");
    EXPECT_EQ(settings.stored(), (QJsonObject{{"connections", 8}}));
    EXPECT_THROW(settings.unset("nonsense"), Settings::Refusal);
    try {
        settings.set("nonsense", {"1"});
        ADD_FAILURE();
    } catch (const Settings::Refusal& refusal) {
        EXPECT_STREQ(refusal.what(), "'nonsense' is no setting");
    }
}

TEST_F(SettingsTest, unknownMembersAreSavedButNotTold)
{
    write(R"({"later": {"a": [1]}, "retries": 1})");
    Settings settings = load();
    EXPECT_EQ(settings.stored(), (QJsonObject{{"retries", 1}}));
    settings.set("retries", {"2"});
    settings.save(folder.file(""));
    EXPECT_EQ(saved(), (QJsonObject{{"later", QJsonObject{{"a", QJsonArray{1}}}}, {"retries", 2}}));
}

TEST_F(SettingsTest, refusedFileIsToldWithItsPlace)
{
    const std::pair<const char*, const char*> table[] = {
        {"", "line 1, column 1: "},
        {"[1]", "line 1, column 1: must be one object"},
        {"\n[1]", "line 1, column 1: must be one object"},
        {R"({"retries":-1})", "line 1, column 12: retries must be "},
        {R"({"retries" :  -1})", "line 1, column 15: retries must be "},
        {"{\n\n \"retries\"\r\n\t: \t\r\n  -1}", "line 5, column 3: retries must be "},
        {"\n{\"retries\": -1}", "line 2, column 13: retries must be "},
        {"\n{\"retr\\u0069es\": -1}", "line 1, column 1: retries must be "},
        {"\n{\"retr\\u0069es\": -1, \"x\": [\"retries\"]}", "line 1, column 1: retries must be "},
    };
    for (const auto& [text, expected] : table)
        EXPECT_THAT(refusal(text), testing::StartsWith(expected)) << text;
    EXPECT_THAT(refusal("{\n\"url\" 1}"), testing::StartsWith("line 2, column "));
    EXPECT_EQ(refusal("{}"), "");
}

TEST_F(SettingsTest, fileThatIsThereButCannotBeReadIsNotTakenForMissing)
{
    fs::create_symlink("nowhere", folder.path() + "/settings.json");
    EXPECT_THROW(load(), std::runtime_error);
    fs::remove(folder.path() + "/settings.json");
    fs::create_directory(folder.path() + "/settings.json");
    EXPECT_THROW(load(), std::runtime_error);
}

TEST_F(SettingsTest, formerSettingsAreTakenOverAndSaved)
{
    const QJsonObject expected = {{"url", "http://a.example/"},
                                  {"product", "P"},
                                  {"productVersion", "1"},
                                  {"bonus", QJsonArray{"Garden.orvlib", "Holiday.orvlib"}},
                                  {"manufacturer", QJsonArray{"m.orvlib"}},
                                  {"manufacturerDataUrl", "http://data.example/"},
                                  {"manufacturerLogoUrl", "http://logo.example/"},
                                  {"proxy", "proxy.example:1"}};
    EXPECT_EQ(takenOver(R"({"serviceUrl": "http://a.example/", "product": "P", "productVersion": "1",
                            "bonusCatalogs": ["Garden.orvlib", "Holiday", "../outside", "", 1],
                            "manufacturerCatalogs": ["m"], "manufacturerDataUrl": "http://data.example/",
                            "manufacturerLogoUrl": "http://logo.example/", "proxy": "proxy.example:1",
                            "retries": 5, "colours": "dark"})"),
              expected);
    EXPECT_EQ(saved(), expected);
    folder.write("browser.json", R"({"product": "Q"})");
    EXPECT_EQ(load().stored(), expected) << "only once";
}

TEST_F(SettingsTest, formerSettingThatIsNotValidIsLeftOut)
{
    EXPECT_EQ(
        takenOver(R"({"serviceUrl": "ftp://a.example/", "product": "P", "productVersion": 1, "proxy": "",
                            "bonusCatalogs": ["../outside"], "manufacturerCatalogs": "m.orvlib"})"),
        (QJsonObject{{"product", "P"}}));
    for (const char* const former : {"", "{", "[1]", "{}", R"({"bonusCatalogs": [], "proxy": ""})"}) {
        EXPECT_EQ(takenOver(former), QJsonObject()) << former;
        EXPECT_FALSE(fs::exists(folder.path() + "/settings.json")) << former;
    }
}

TEST_F(SettingsTest, environmentGoesBeforeProxyAndCertificates)
{
    const std::pair<const char*, const char*> table[] = {
        {"http_proxy", "proxy"},         {"https_proxy", "proxy"}, {"HTTPS_PROXY", "proxy"},
        {"all_proxy", "proxy"},          {"ALL_PROXY", "proxy"},   {"SSL_CERT_FILE", "certificates"},
        {"SSL_CERT_DIR", "certificates"}};
    Settings settings;
    settings.set("proxy", {"proxy.example:1"});
    settings.set("certificates", {"/certificates.pem"});
    for (const auto& [variable, key] : table) {
        const test::ScopedEnvironment none[] = {{"http_proxy", nullptr},  {"https_proxy", nullptr},
                                                {"HTTPS_PROXY", nullptr}, {"all_proxy", nullptr},
                                                {"ALL_PROXY", nullptr},   {"SSL_CERT_FILE", nullptr},
                                                {"SSL_CERT_DIR", nullptr}};
        for (const char* const each : {"proxy", "certificates", "url"})
            EXPECT_FALSE(Settings::isFromEnvironment(each)) << each;
        EXPECT_EQ(settings.valuesHere().proxy, "proxy.example:1");
        EXPECT_EQ(settings.valuesHere().certificates, "/certificates.pem");
        {
            const test::ScopedEnvironment empty(variable, "");
            EXPECT_FALSE(Settings::isFromEnvironment(key)) << variable;
        }
        const test::ScopedEnvironment given(variable, "x");
        for (const std::string each : {"proxy", "certificates", "url"})
            EXPECT_EQ(Settings::isFromEnvironment(each), each == key) << variable;
        const bool isProxy = std::string(key) == "proxy";
        EXPECT_EQ(settings.valuesHere().proxy, isProxy ? "" : "proxy.example:1") << variable;
        EXPECT_EQ(settings.valuesHere().certificates, isProxy ? "/certificates.pem" : "") << variable;
        EXPECT_EQ(settings.values().proxy, "proxy.example:1");
    }
}
