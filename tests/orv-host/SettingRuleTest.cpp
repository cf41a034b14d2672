// The rules are reached through the settings: a value that is set, or read from the file, and the defaults.
#include <set>

#include <QJsonArray>

#include <gmock/gmock.h>

#include "OrvHost/Settings.h"
#include "OrvLibrary/OrvLibraryVersion.h"
#include "tests/support/TempFolder.h"

using OrvHost::Settings;

namespace {

using Texts = std::vector<std::string>;

/// The reason why a value is refused; empty if it is set.
std::string refusal(const std::string& key, const Texts& texts)
{
    Settings settings;
    try {
        settings.set(key, texts);
    } catch (const Settings::Refusal& failure) {
        EXPECT_TRUE(settings.stored().isEmpty());
        return failure.what();
    }
    return {};
}

QJsonValue taken(const std::string& key, const Texts& texts)
{
    Settings settings;
    settings.set(key, texts);
    return settings.stored()[QString::fromStdString(key)];
}

/// The reason why a file is refused, from the key on; empty if it is read.
std::string refusalOfFile(const std::string& member)
{
    const test::TempFolder folder;
    folder.write("settings.json", "{" + member + "}");
    try {
        Settings::load(folder.file(""));
    } catch (const std::runtime_error& failure) {
        const std::string text = failure.what();
        return text.substr(text.rfind(": ") + 2);
    }
    return {};
}

} // namespace

TEST(SettingRule, defaults)
{
    const QJsonObject expected = {{"url", ""},
                                  {"product", "orv-library"},
                                  {"productVersion", ORVLIBRARY_VERSION_STRING},
                                  {"bonus", QJsonArray()},
                                  {"manufacturer", QJsonArray()},
                                  {"manufacturerDataUrl", ""},
                                  {"manufacturerLogoUrl", ""},
                                  {"proxy", ""},
                                  {"certificates", ""},
                                  {"retries", 3},
                                  {"connections", 16},
                                  {"limitRate", 0},
                                  {"metered", "postpone"},
                                  {"diskReserve", 0},
                                  {"historyVersions", 3},
                                  {"historyBytes", 2147483648.0}};
    EXPECT_EQ(Settings::defaults(), expected);
    for (const QString& key : expected.keys())
        EXPECT_TRUE(Settings::isKey(key.toStdString())) << key.toStdString();
    for (const char* const key : {"", "ur", "urls", "Url"})
        EXPECT_FALSE(Settings::isKey(key)) << key;
}

TEST(SettingRule, eachNumberHasItsBounds)
{
    struct Bounds
    {
        std::string key;
        std::int64_t lowest;
        std::int64_t highest;
    };
    constexpr std::int64_t kLargest = 9007199254740991;
    const Bounds table[] = {{"retries", 0, 100},          {"connections", 1, 96},
                            {"limitRate", 0, kLargest},   {"diskReserve", 0, kLargest},
                            {"historyVersions", 1, 1000}, {"historyBytes", 0, kLargest}};
    for (const auto& [key, lowest, highest] : table) {
        const std::string range =
            std::to_string(lowest) + (highest == kLargest ? " on" : " to " + std::to_string(highest));
        const std::string reason = key + ": must be a number from " + range;
        for (const std::int64_t number : {lowest, highest}) {
            const std::string text = std::to_string(number);
            EXPECT_EQ(taken(key, {text}), QJsonValue(static_cast<qint64>(number)));
            EXPECT_EQ(refusalOfFile("\"" + key + "\": " + text), "");
        }
        for (const std::int64_t number : {lowest - 1, highest + 1}) {
            EXPECT_EQ(refusal(key, {std::to_string(number)}), reason);
            EXPECT_EQ(refusalOfFile("\"" + key + "\": " + std::to_string(number)),
                      key + " must be a number from " + range);
        }
        for (const char* const text : {"", "x", "3x", " 3", "+3", "1.5", "0x3", "99999999999999999999"})
            EXPECT_EQ(refusal(key, {text}), reason) << text;
        for (const char* const value : {"\"3\"", "1.5", "null", "[3]", "1e300", "-1e300"})
            EXPECT_EQ(refusalOfFile("\"" + key + "\": " + value), key + " must be a number from " + range)
                << value;
    }
}

TEST(SettingRule, onlyAListTakesAnyNumberOfTexts)
{
    EXPECT_EQ(refusal("url", {}), "url: needs a value");
    EXPECT_EQ(refusal("bonus", {}), "bonus: needs a value");
    EXPECT_EQ(refusal("product", {"a", "b"}), "product: takes one value");
    EXPECT_EQ(refusal("retries", {"1", "2"}), "retries: takes one value");
    EXPECT_EQ(taken("bonus", {"b.orvlib", "a.orvlib", "b.orvlib", "c.orvlib"}),
              (QJsonArray{"b.orvlib", "a.orvlib", "c.orvlib"}))
        << "in the given order, each once";
    EXPECT_EQ(taken("manufacturer", {"a.orvlib"}), QJsonArray{"a.orvlib"});
    EXPECT_EQ(refusal("bonus", {"a.orvlib", "b"}), "bonus: 'b' is not a file name that ends in .orvlib");
}

TEST(SettingRule, textsAreOneLineOfUtf8)
{
    EXPECT_EQ(taken("product", {"T\xC3\xBCr und Tor"}), QJsonValue("Tür und Tor"));
    EXPECT_EQ(refusal("product", {""}), "product: must not be empty");
    for (const char* const text : {"a\nb", "\t", "\x1F", "T\xFCr"})
        EXPECT_EQ(refusal("product", {text}), "product: must be one line of UTF-8 text") << text;
    for (const char* const key : {"product", "productVersion", "certificates"})
        EXPECT_EQ(taken(key, {"ftp://x:y/ 'anything'"}), QJsonValue("ftp://x:y/ 'anything'")) << key;
}

TEST(SettingRule, addressesAreOfHttp)
{
    for (const std::string key : {"url", "manufacturerDataUrl", "manufacturerLogoUrl"}) {
        EXPECT_EQ(taken(key, {"HTTPS://content.example/a?b"}), QJsonValue("HTTPS://content.example/a?b"));
        EXPECT_EQ(refusal(key, {"ftp://content.example/"}),
                  key + ": 'ftp://content.example/' is no http or https address");
    }
}

TEST(SettingRule, proxyIsAHostWithOrWithoutTheRest)
{
    for (const char* const text :
         {"proxy.example", "proxy.example:3128", "http://u:p@[::1]:3128/", "https://proxy.example/",
          "socks4://p", "socks4a://p", "socks5://p:1", "socks5h://p:65535"})
        EXPECT_EQ(taken("proxy", {text}), QJsonValue(text));
    for (const std::string text :
         {"ftp://proxy.example", "proxy.example:123456", "a proxy", "http://", "x/y", "p:", "@"})
        EXPECT_EQ(refusal("proxy", {text}),
                  "proxy: '" + text + "' is no proxy, such as http://proxy.example:3128");
}

TEST(SettingRule, choiceIsOneOfItsWords)
{
    EXPECT_EQ(taken("metered", {"fetch"}), QJsonValue("fetch"));
    EXPECT_EQ(taken("metered", {"postpone"}), QJsonValue("postpone"));
    EXPECT_EQ(refusal("metered", {"yes"}), "metered: must be 'fetch' or 'postpone'");
}

TEST(SettingRule, catalogsAreFileNames)
{
    EXPECT_EQ(taken("bonus", {"Garden Party.v2.orvlib"}), QJsonArray{"Garden Party.v2.orvlib"});
    for (const std::string name :
         {".orvlib", "Garden", "Garden.orvlibz", "../Garden.orvlib", "a/Garden.orvlib"})
        EXPECT_EQ(refusal("bonus", {name}), "bonus: '" + name + "' is not a file name that ends in .orvlib");
}

TEST(SettingRule, membersOfTheFileHaveTheirKind)
{
    EXPECT_EQ(refusalOfFile(R"("url": 1)"), "url must be a text");
    EXPECT_EQ(refusalOfFile(R"("url": ["http://a.example/"])"), "url must be a text");
    EXPECT_EQ(refusalOfFile(R"("metered": "no")"), "metered must be 'fetch' or 'postpone'");
    EXPECT_EQ(refusalOfFile(R"("metered": "fetch", "product": "x", "bonus": [])"), "");
    EXPECT_EQ(refusalOfFile(R"("bonus": "a.orvlib")"), "bonus must be a list of texts");
    EXPECT_EQ(refusalOfFile(R"("bonus": ["a.orvlib", 1])"), "bonus must be a list of texts");
    EXPECT_EQ(refusalOfFile(R"("bonus": ["a.orvlib", "b"])"),
              "bonus 'b' is not a file name that ends in .orvlib");
    EXPECT_EQ(refusalOfFile(R"("bonus": ["a.orvlib", "b.orvlib"])"), "");
}
