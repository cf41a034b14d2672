#include "apps/orv-browser/BrowserSettings.h"

#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>

#include "OrvHost/TextFile.h"
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
    QFile file(QFile::decodeName(fileIn(root).toNativeString().c_str()));
    if (!file.open(QIODevice::ReadOnly))
        return settings;
    const QJsonObject document = QJsonDocument::fromJson(file.readAll()).object();
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
