#include "apps/orv-browser/BrowserSettings.h"

#include <QJsonDocument>
#include <QJsonObject>

#include "OrvHost/TextFile.h"
#include "OrvLibrary/host/FileUtils.h"
#include "apps/orv-browser/models/Reasons.h"

namespace {

fileString fileIn(const fileString& root)
{
    return root / fileString("browser.json");
}

} // namespace

BrowserSettings BrowserSettings::load(const fileString& root)
{
    BrowserSettings settings;
    const QByteArray text = QByteArray::fromStdString(textIn(root).value_or(std::string()));
    const QJsonObject document = QJsonDocument::fromJson(text).object();
    settings.checkAtStart = document["checkAtStart"].toBool();
    settings.checkAgeHours = qBound(0, document["checkAgeHours"].toInt(settings.checkAgeHours), kMostHours);
    settings.colours = document["colours"].toString(settings.colours);
    return settings;
}

bool BrowserSettings::save(const fileString& root, QString& reason) const
{
    const QJsonObject document{
        {"checkAtStart", checkAtStart}, {"checkAgeHours", checkAgeHours}, {"colours", colours}};
    try {
        OrvHost::TextFile::write(fileIn(root), QJsonDocument(document).toJson().toStdString());
        return true;
    } catch (const std::exception& error) {
        reason = Reasons::text(error.what());
        return false;
    }
}

std::optional<std::string> BrowserSettings::textIn(const fileString& root)
{
    const fileString file = fileIn(root);
    return file.pathExists() ? std::optional(OrvHost::TextFile::read(file)) : std::nullopt;
}

void BrowserSettings::putBack(const fileString& root, const std::optional<std::string>& text)
try {
    if (text)
        OrvHost::TextFile::write(fileIn(root), *text);
    else
        FileUtils::removePath(fileIn(root));
} catch (const std::exception&) {
    return; // the user is told of the failure that led here
}
