#include "apps/orv-browser/BrowserSettings.h"

#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>

#include "apps/common/TextFile.h"

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
    settings.serviceUrl = document["serviceUrl"].toString(settings.serviceUrl);
    settings.product = document["product"].toString(settings.product);
    settings.productVersion = document["productVersion"].toString(settings.productVersion);
    settings.manufacturerDataUrl = document["manufacturerDataUrl"].toString();
    settings.manufacturerLogoUrl = document["manufacturerLogoUrl"].toString();
    settings.proxy = document["proxy"].toString();
    settings.checkAtStart = document["checkAtStart"].toBool();
    settings.colours = document["colours"].toString(settings.colours);
    return settings;
}

bool BrowserSettings::save(const fileString& root, QString& reason) const
{
    const QJsonObject document{
        {"serviceUrl", serviceUrl},
        {"product", product},
        {"productVersion", productVersion},
        {"manufacturerDataUrl", manufacturerDataUrl},
        {"manufacturerLogoUrl", manufacturerLogoUrl},
        {"proxy", proxy},
        {"checkAtStart", checkAtStart},
        {"colours", colours},
    };
    try {
        TextFile::write(fileIn(root), QJsonDocument(document).toJson().toStdString());
        return true;
    } catch (const std::exception& error) {
        reason = QString::fromUtf8(error.what());
        return false;
    }
}
