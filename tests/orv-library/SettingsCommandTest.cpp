#include <filesystem>

#include <QJsonArray>
#include <QJsonDocument>
#include <gmock/gmock.h>

#include "tests/orv-library/Program.h"

using testing::HasSubstr;
using testing::StartsWith;

namespace fs = std::filesystem;

namespace {

class Settings : public testing::Test
{
protected:
    test::ProgramResult settings(std::vector<std::string> arguments) const
    {
        arguments.insert(arguments.begin(), {"--json", "settings"});
        return program.run(arguments);
    }

    std::string get(const std::string& key) const
    {
        const test::ProgramResult result = program.run({"settings", "get", key});
        EXPECT_EQ(0, result.status) << result.err;
        return result.out;
    }

    QJsonObject stored() const
    {
        return QJsonDocument::fromJson(QByteArray::fromStdString(test::readFile(file))).object();
    }

    const test::Program program;
    const std::string file = program.root() + "/settings.json";
};

} // namespace

TEST_F(Settings, nothingIsSetAtFirstAndDefaultsAreTold)
{
    program.createRoot();
    const QJsonObject document = settings({}).json();
    EXPECT_EQ(QJsonObject(), document["settings"].toObject());
    const QJsonObject defaults = document["defaults"].toObject();
    EXPECT_EQ(16, defaults.size());
    EXPECT_EQ("postpone", defaults["metered"].toString());
    EXPECT_EQ(3, defaults["retries"].toInt());
    EXPECT_EQ(16, defaults["connections"].toInt());
    EXPECT_EQ(QJsonArray(), defaults["bonus"].toArray());
    EXPECT_EQ(document, settings({"list"}).json());
    EXPECT_EQ("3\n", get("retries"));
    EXPECT_EQ("\n", get("url"));
    EXPECT_EQ("", get("bonus"));
    EXPECT_EQ("orv-library\n", get("product"));
    EXPECT_FALSE(fs::exists(file));
}

TEST_F(Settings, setMakesTheRootAndKeepsTypes)
{
    EXPECT_EQ(0, settings({"set", "url", "https://content.example/redirect"}).status);
    EXPECT_EQ(0, settings({"set", "retries", "5"}).status);
    const QJsonObject expected = {{"url", "https://content.example/redirect"},
                                  {"retries", 5},
                                  {"bonus", QJsonArray{"Garden Party.orvlib", "Türen.orvlib"}}};
    const QJsonObject printed = settings({"set", "bonus", "Garden Party.orvlib", "Türen.orvlib"}).json();
    EXPECT_EQ(expected, printed["settings"].toObject());
    EXPECT_EQ(expected, stored());
    EXPECT_EQ("Garden Party.orvlib\nTüren.orvlib\n", get("bonus"));
    EXPECT_EQ(QJsonArray{"Sauna.orvlib"},
              settings({"set", "bonus", "Sauna.orvlib"}).json()["settings"].toObject()["bonus"].toArray());
    EXPECT_EQ(0, settings({"unset", "retries"}).status);
    EXPECT_EQ(0, settings({"unset", "retries"}).status);
    EXPECT_EQ("3\n", get("retries"));
    EXPECT_EQ(2, stored().size());
}

TEST_F(Settings, valuesThatCannotBeAreRefused)
{
    const std::vector<std::vector<std::string>> wrong = {
        {"nonsense"},
        {"get"},
        {"get", "nonsense"},
        {"set", "nonsense", "1"},
        {"unset", "nonsense"},
        {"set", "url"},
        {"set", "url", ""},
        {"set", "url", "ftp://content.example/"},
        {"set", "url", "http://a.example/", "http://b.example/"},
        {"set", "product", ""},
        {"set", "product", "a\nb"},
        {"set", "bonus", "../Garden.orvlib"},
        {"set", "bonus", "Garden.orvlibz"},
        {"set", "proxy", "proxy.example:99999999"},
        {"set", "proxy", "ftp://proxy.example"},
        {"set", "connections", "0"},
        {"set", "connections", "97"},
        {"set", "retries", "-1"},
        {"set", "retries", "3x"},
        {"set", "limitRate", "1.5"},
        {"set", "metered", "yes"},
        {"set", "diskReserve", "-1"},
        {"set", "historyVersions", "0"},
        {"set", "historyBytes", "9007199254740992"},
    };
    for (const auto& arguments : wrong) {
        const test::ProgramResult result = settings(arguments);
        EXPECT_EQ(2, result.status) << testing::PrintToString(arguments);
        EXPECT_FALSE(fs::exists(program.root())) << testing::PrintToString(arguments);
    }
    EXPECT_THAT(settings({"set", "connections", "97"}).err,
                StartsWith("orv-library: connections: must be a number from 1 to 96\n"));
}

TEST_F(Settings, edgesAreTaken)
{
    for (const std::vector<std::string>& setting : std::vector<std::vector<std::string>>{
             {"connections", "1"},
             {"connections", "96"},
             {"retries", "0"},
             {"metered", "fetch"},
             {"metered", "postpone"},
             {"historyVersions", "1"},
             {"historyBytes", "0"},
             {"limitRate", "9007199254740991"},
             {"proxy", "proxy.example:3128"},
             {"proxy", "http://user:secret@[::1]:3128/"},
             {"proxy", "socks5://127.0.0.1"},
         })
        EXPECT_EQ(0, settings({"set", setting[0], setting[1]}).status) << setting[1];
    EXPECT_EQ("9007199254740991\n", get("limitRate"));
}

TEST_F(Settings, unknownMembersAreKept)
{
    test::writeFile(file, R"({"later": {"a": [1, 2]}, "retries": 1})");
    ASSERT_EQ(0, settings({"set", "retries", "2"}).status);
    EXPECT_EQ((QJsonObject{{"later", QJsonObject{{"a", QJsonArray{1, 2}}}}, {"retries", 2}}), stored());
    EXPECT_EQ((QJsonObject{{"retries", 2}}), settings({}).json()["settings"].toObject());
}

TEST_F(Settings, fileThatCannotBeReadIsNamedWithItsPlaceAndNeverWritten)
{
    const std::vector<std::pair<std::string, std::string>> cases = {
        {"{\n  \"retries\": 3,\n  \"url\" \"x\"\n}\n", ": line 3, column "},
        {"", ": line 1, column 1: "},
        {"[1]", ": line 1, column 1: must be one object"},
        {"{\n  \"connections\": 97\n}", ": line 2, column 18: connections must be a number from 1 to 96"},
        {"{\"bonus\": \"Garden.orvlib\"}", ": line 1, column 11: bonus must be a list of texts"},
        {"{\"url\": 1}", ": line 1, column 9: url must be a text"},
    };
    for (const auto& [text, place] : cases) {
        test::writeFile(file, text);
        for (const std::vector<std::string>& arguments : std::vector<std::vector<std::string>>{
                 {"list"}, {"get", "url"}, {"set", "retries", "3"}, {"unset", "retries"}}) {
            const test::ProgramResult result = settings(arguments);
            EXPECT_EQ(1, result.status) << text;
            EXPECT_THAT(result.err, HasSubstr(file + place)) << text;
            EXPECT_THAT(result.json()["error"].toString().toStdString(), HasSubstr(place)) << text;
        }
        EXPECT_EQ(text, test::readFile(file));
    }
}

TEST_F(Settings, browserSettingsAreTakenOverOnce)
{
    test::writeFile(program.root() + "/browser.json",
                    R"({"serviceUrl": "https://content.example/redirect", "product": "Orv", "colours": "dark",
                        "bonusCatalogs": ["Garden.orvlib", "Holiday", "../outside"],
                        "manufacturerCatalogs": [], "proxy": ""})");
    const QJsonObject expected = {{"url", "https://content.example/redirect"},
                                  {"product", "Orv"},
                                  {"bonus", QJsonArray{"Garden.orvlib", "Holiday.orvlib"}}};
    EXPECT_EQ(expected, settings({}).json()["settings"].toObject());
    EXPECT_EQ(expected, stored());
    for (const char* key : {"url", "product", "bonus"})
        EXPECT_EQ(0, settings({"unset", key}).status);
    EXPECT_EQ(QJsonObject(), settings({}).json()["settings"].toObject());
}

TEST_F(Settings, twoAtOnceLoseNothing)
{
    const std::vector<std::string> keys = {"retries", "connections", "historyVersions", "limitRate"};
    std::vector<std::unique_ptr<QProcess>> running;
    for (const std::string& key : keys)
        running.push_back(program.start({"settings", "set", key, "7"}));
    for (const auto& process : running)
        EXPECT_EQ(0, test::Program::finish(*process).status);
    EXPECT_EQ(4, stored().size());
}

TEST_F(Settings, manufacturersAreRefreshedFromThem)
{
    program.createRoot();
    EXPECT_EQ(2, program.run({"manufacturers", "refresh"}).status);
    settings({"set", "manufacturerDataUrl", "http://127.0.0.1:9/data?"});
    EXPECT_EQ(2, program.run({"manufacturers", "refresh"}).status);
    settings({"set", "manufacturerLogoUrl", "http://127.0.0.1:9/logo?"});
    const test::ProgramResult result = program.run({"manufacturers", "refresh"});
    EXPECT_EQ(1, result.status);
    EXPECT_THAT(result.err, HasSubstr("http://127.0.0.1:9/data?"));
}
