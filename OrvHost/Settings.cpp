// How it works: the object holds the members of the file as they were read, known or not, so that saving
// loses nothing. `SettingRule` knows each key, its default and its check. `load` checks every known member
// and names the line of a wrong one; `values` fills in the defaults; `set` checks a new value before it is
// stored.
#include "OrvHost/Settings.h"

#include <algorithm>
#include <filesystem>

#include <QJsonArray>
#include <QJsonDocument>
#include <QtGlobal>

#include "OrvHost/SettingRule.h"
#include "OrvHost/TextFile.h"

namespace OrvHost {

namespace {

/// "PATH: line 3, column 7: REASON".
[[noreturn]] void refuseFile(const fileString& path, const std::string& text, std::size_t offset,
                             const std::string& reason)
{
    const std::string before = text.substr(0, offset);
    const std::size_t lineStart = before.rfind('\n') + 1; // npos + 1 is 0
    const auto line = std::count(before.begin(), before.end(), '\n') + 1;
    throw std::runtime_error(path.toNativeString() + ": line " + std::to_string(line) + ", column " +
                             std::to_string(before.size() - lineStart + 1) + ": " + reason);
}

/// The offset of a member's value, or a place near it.
std::size_t placeOf(const char* key, const std::string& text)
{
    const std::size_t name = text.find("\"" + std::string(key) + "\"");
    const std::size_t colon = text.find(':', name);
    const std::size_t value = text.find_first_not_of(" \t\r\n", colon + 1);
    return colon == std::string::npos ? 0 : value;
}

const SettingRule& ruleOf(const std::string& key)
{
    const SettingRule* rule = SettingRule::find(key);
    if (!rule)
        throw Settings::Refusal("'" + key + "' is no setting");
    return *rule;
}

std::vector<std::string> texts(const QJsonValue& list)
{
    std::vector<std::string> result;
    for (const QJsonValue text : list.toArray())
        result.push_back(text.toString().toStdString());
    return result;
}

/// The valid names of a list. The window once accepted names without their extension, too.
QJsonValue takenOver(const QJsonValue& value, const SettingRule& rule)
{
    if (!value.isArray())
        return value;
    QJsonArray names;
    for (const QJsonValue entry : value.toArray()) {
        const QString name = entry.toString();
        const QString file =
            name.endsWith(QLatin1String(".orvlib")) ? name : name + QStringLiteral(".orvlib");
        if (rule.problemOf(QJsonArray{file}).empty())
            names.append(file);
    }
    return names;
}

bool exists(const fileString& path)
{
    std::error_code error;
    return std::filesystem::symlink_status(path.toNativeString(), error).type() !=
           std::filesystem::file_type::not_found;
}

} // namespace

fileString Settings::fileIn(const fileString& root)
{
    return root / fileString("settings.json");
}

QJsonObject Settings::defaults()
{
    QJsonObject object;
    for (const SettingRule& rule : SettingRule::all())
        object[rule.key] = rule.defaultValue();
    return object;
}

bool Settings::isKey(const std::string& key)
{
    return SettingRule::find(key) != nullptr;
}

Settings Settings::load(const fileString& root)
{
    Settings settings;
    const fileString path = fileIn(root);
    if (exists(path))
        settings.readMembers(TextFile::read(path), path);
    else
        settings.takeOverBrowserSettings(root);
    return settings;
}

void Settings::readMembers(const std::string& text, const fileString& path)
{
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(QByteArray::fromStdString(text), &error);
    if (document.isNull())
        refuseFile(path, text, static_cast<std::size_t>(error.offset), error.errorString().toStdString());
    if (!document.isObject())
        refuseFile(path, text, 0, "must be one object");
    mMembers = document.object();
    for (const SettingRule& rule : SettingRule::all()) {
        const QJsonValue value = mMembers.value(QLatin1String(rule.key));
        const std::string problem = value.isUndefined() ? std::string() : rule.problemOf(value);
        if (!problem.empty())
            refuseFile(path, text, placeOf(rule.key, text), std::string(rule.key) + " " + problem);
    }
}

/// If the file is unreadable or a value is not valid, there is nothing to take over. If saving fails, the
/// next call tries again.
void Settings::takeOverBrowserSettings(const fileString& root)
try {
    static constexpr std::pair<const char*, const char*> kNames[] = {
        {"serviceUrl", "url"},
        {"product", "product"},
        {"productVersion", "productVersion"},
        {"bonusCatalogs", "bonus"},
        {"manufacturerCatalogs", "manufacturer"},
        {"manufacturerDataUrl", "manufacturerDataUrl"},
        {"manufacturerLogoUrl", "manufacturerLogoUrl"},
        {"proxy", "proxy"}};
    const fileString path = root / fileString("browser.json");
    if (!exists(path))
        return;
    const QJsonObject former =
        QJsonDocument::fromJson(QByteArray::fromStdString(TextFile::read(path))).object();
    for (const auto& [name, key] : kNames) {
        const QJsonValue value = takenOver(former[name], ruleOf(key));
        const bool isEmptyList = value.isArray() && value.toArray().isEmpty();
        if (!isEmptyList && ruleOf(key).problemOf(value).empty())
            mMembers[key] = value;
    }
    if (!mMembers.isEmpty())
        save(root);
} catch (const std::exception&) {
    // a failure leaves it to the next call
}

Settings::Values Settings::values() const
{
    const auto value = [this](const char* key) {
        return mMembers.contains(key) ? mMembers[key] : ruleOf(key).defaultValue();
    };
    const auto text = [&value](const char* key) { return value(key).toString().toStdString(); };
    const auto number = [&value](const char* key) {
        return static_cast<std::int64_t>(value(key).toDouble());
    };
    Values values;
    values.url = text("url");
    values.product = text("product");
    values.productVersion = text("productVersion");
    values.bonus = texts(value("bonus"));
    values.manufacturer = texts(value("manufacturer"));
    values.manufacturerDataUrl = text("manufacturerDataUrl");
    values.manufacturerLogoUrl = text("manufacturerLogoUrl");
    values.proxy = text("proxy");
    values.certificates = text("certificates");
    values.retries = static_cast<int>(number("retries"));
    values.connections = static_cast<int>(number("connections"));
    values.limitRate = number("limitRate");
    values.postponesOnMetered = text("metered") == kPostpone;
    values.diskReserve = number("diskReserve");
    values.historyVersions = static_cast<int>(number("historyVersions"));
    values.historyBytes = number("historyBytes");
    return values;
}

Settings::Values Settings::valuesHere() const
{
    Values here = values();
    if (isFromEnvironment("proxy"))
        here.proxy.clear();
    if (isFromEnvironment("certificates"))
        here.certificates.clear();
    return here;
}

bool Settings::isFromEnvironment(const std::string& key)
{
    std::vector<const char*> variables;
    if (key == "proxy")
        variables = {"http_proxy", "https_proxy", "HTTPS_PROXY", "all_proxy", "ALL_PROXY"};
    else if (key == "certificates")
        variables = {"SSL_CERT_FILE", "SSL_CERT_DIR"};
    return std::any_of(variables.begin(), variables.end(),
                       [](const char* variable) { return !qEnvironmentVariableIsEmpty(variable); });
}

QJsonObject Settings::stored() const
{
    QJsonObject object;
    for (const SettingRule& rule : SettingRule::all()) {
        if (mMembers.contains(rule.key))
            object[rule.key] = mMembers[rule.key];
    }
    return object;
}

void Settings::set(const std::string& key, const std::vector<std::string>& given)
{
    std::string reason;
    const QJsonValue value = ruleOf(key).valueOf(given, reason);
    if (value.isUndefined())
        throw Refusal(key + ": " + reason);
    mMembers[QString::fromStdString(key)] = value;
}

void Settings::unset(const std::string& key)
{
    ruleOf(key);
    mMembers.remove(QString::fromStdString(key));
}

void Settings::save(const fileString& root) const
{
    TextFile::write(fileIn(root), QJsonDocument(mMembers).toJson().toStdString());
}

} // namespace OrvHost
