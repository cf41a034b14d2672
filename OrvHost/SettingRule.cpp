#include "OrvHost/SettingRule.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>

#include <QJsonArray>
#include <QRegularExpression>

#include "OrvHost/AppHost.h"
#include "OrvHost/Settings.h"
#include "OrvLibrary/OrvLibraryVersion.h"
#include "OrvLibrary/host/Curl.h"

namespace OrvHost {

namespace {

using Kind = SettingRule::Kind;

constexpr std::int64_t kMostRetries = 100;
constexpr std::int64_t kMostVersions = 1000;
/// The largest integer that every JSON reader keeps exactly.
constexpr std::int64_t kLargest = 9007199254740991;

bool hasControlCharacter(const std::string& text)
{
    return std::any_of(text.begin(), text.end(),
                       [](char character) { return static_cast<unsigned char>(character) < 0x20; });
}

bool isCatalogName(const std::string& text)
{
    const fileString name(text);
    return text.find('/') == std::string::npos && name.extension() == fileString(".orvlib") &&
           !name.stem().empty();
}

bool isProxy(const std::string& text)
{
    static const QRegularExpression kForm(QStringLiteral(
        R"(^((https?|socks4a?|socks5h?)://)?([^/@\s]+@)?([^/@\s:\[\]]+|\[[0-9a-fA-F:.]+\])(:\d{1,5})?/?$)"));
    return kForm.match(QString::fromStdString(text)).hasMatch();
}

/// "'a' or 'b'".
std::string joined(const std::vector<std::string>& choices)
{
    std::string text;
    for (const std::string& choice : choices)
        text += (text.empty() ? "'" : " or '") + choice + "'";
    return text;
}

QString qText(const std::string& text)
{
    return QString::fromStdString(text);
}

SettingRule number(const char* key, std::int64_t lowest, std::int64_t highest, std::int64_t usual)
{
    SettingRule rule{key, Kind::Number};
    rule.lowest = lowest;
    rule.highest = highest;
    rule.defaultNumber = usual;
    return rule;
}

} // namespace

const std::vector<SettingRule>& SettingRule::all()
{
    static const std::vector<SettingRule> kRules = {
        {"url", Kind::Address},
        {"product", Kind::Text, AppHost::kName},
        {"productVersion", Kind::Text, ORVLIBRARY_VERSION_STRING},
        {"bonus", Kind::CatalogList},
        {"manufacturer", Kind::CatalogList},
        {"manufacturerDataUrl", Kind::Address},
        {"manufacturerLogoUrl", Kind::Address},
        {"proxy", Kind::Proxy},
        {"certificates", Kind::Path},
        number("retries", 0, kMostRetries, 3),
        number("connections", 1, 96, 16),
        number("limitRate", 0, kLargest, 0),
        {"metered", Kind::Choice, Settings::kPostpone, {Settings::kFetch, Settings::kPostpone}},
        number("diskReserve", 0, kLargest, 0),
        number("historyVersions", 1, kMostVersions, 3),
        number("historyBytes", 0, kLargest, 2147483648),
    };
    return kRules;
}

const SettingRule* SettingRule::find(const std::string& key)
{
    const auto found =
        std::find_if(all().begin(), all().end(), [&key](const SettingRule& rule) { return rule.key == key; });
    return found == all().end() ? nullptr : &*found;
}

QJsonValue SettingRule::defaultValue() const
{
    if (kind == Kind::CatalogList)
        return QJsonArray();
    if (kind == Kind::Number)
        return static_cast<qint64>(defaultNumber);
    return QString::fromUtf8(defaultText);
}

std::string SettingRule::problemOfNumber(std::int64_t number) const
{
    if (number >= lowest && number <= highest)
        return {};
    return highest == kLargest
               ? "must be a number from " + std::to_string(lowest) + " on"
               : "must be a number from " + std::to_string(lowest) + " to " + std::to_string(highest);
}

std::string SettingRule::problemOfText(const std::string& text) const
{
    if (text.empty())
        return "must not be empty";
    if (hasControlCharacter(text) || !(qText(text).toStdString() == text))
        return "must be one line of UTF-8 text";
    if (kind == Kind::Address && !Curl::get().downloadable(text))
        return "'" + text + "' is no http or https address";
    if (kind == Kind::Proxy && !isProxy(text))
        return "'" + text + "' is no proxy, such as http://proxy.example:3128";
    if (kind == Kind::Choice && std::find(choices.begin(), choices.end(), text) == choices.end())
        return "must be " + joined(choices);
    if (kind == Kind::CatalogList && !isCatalogName(text))
        return "'" + text + "' is not a file name that ends in .orvlib";
    return {};
}

QJsonValue SettingRule::valueOf(const std::vector<std::string>& texts, std::string& reason) const
{
    if (texts.empty() || (kind != Kind::CatalogList && texts.size() > 1)) {
        reason = texts.empty() ? "needs a value" : "takes one value";
        return QJsonValue::Undefined;
    }
    if (kind == Kind::Number) {
        std::int64_t number = 0;
        const std::string& text = texts.front();
        const auto read = std::from_chars(text.data(), text.data() + text.size(), number);
        const bool isNumber = read.ec == std::errc() && read.ptr == text.data() + text.size();
        reason = problemOfNumber(isNumber ? number : std::numeric_limits<std::int64_t>::min());
        return reason.empty() ? QJsonValue(static_cast<qint64>(number)) : QJsonValue(QJsonValue::Undefined);
    }
    QJsonArray list;
    for (const std::string& text : texts) {
        reason = problemOfText(text);
        if (!reason.empty())
            return QJsonValue::Undefined;
        if (!list.contains(qText(text)))
            list.append(qText(text));
    }
    return kind == Kind::CatalogList ? QJsonValue(list) : list.first();
}

std::string SettingRule::problemOf(const QJsonValue& value) const
{
    if (kind == Kind::Number) {
        const double number = value.toDouble();
        const bool isWhole = value.isDouble() && std::abs(number) <= static_cast<double>(kLargest) &&
                             std::floor(number) == number;
        return problemOfNumber(isWhole ? static_cast<std::int64_t>(number)
                                       : std::numeric_limits<std::int64_t>::min());
    }
    if (kind != Kind::CatalogList)
        return value.isString() ? problemOfText(value.toString().toStdString()) : "must be a text";
    if (!value.isArray())
        return "must be a list of texts";
    for (const QJsonValue name : value.toArray()) {
        const std::string problem =
            name.isString() ? problemOfText(name.toString().toStdString()) : "must be a list of texts";
        if (!problem.empty())
            return problem;
    }
    return {};
}

} // namespace OrvHost
