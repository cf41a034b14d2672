#include "apps/orv-browser/BrowserSettings.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include "OrvHost/TextFile.h"

namespace {

fileString fileIn(const fileString& root)
{
    return root / fileString("browser.json");
}

QStringList textsIn(const QJsonValue& value)
{
    QStringList texts;
    for (const auto& text : value.toArray())
        texts << text.toString();
    return texts;
}

template <class Text>
void replace(Text& setting, const Text& override)
{
    if (!override.isEmpty())
        setting = override;
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
    settings.bonusCatalogs = textsIn(document["bonusCatalogs"]);
    settings.manufacturerCatalogs = textsIn(document["manufacturerCatalogs"]);
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
        {"bonusCatalogs", QJsonArray::fromStringList(bonusCatalogs)},
        {"manufacturerCatalogs", QJsonArray::fromStringList(manufacturerCatalogs)},
        {"manufacturerDataUrl", manufacturerDataUrl},
        {"manufacturerLogoUrl", manufacturerLogoUrl},
        {"proxy", proxy},
        {"checkAtStart", checkAtStart},
        {"colours", colours},
    };
    try {
        OrvHost::TextFile::write(fileIn(root), QJsonDocument(document).toJson().toStdString());
        return true;
    } catch (const std::exception& error) {
        reason = QString::fromUtf8(error.what());
        return false;
    }
}

BrowserSettings ServiceOverrides::over(BrowserSettings settings) const
{
    replace(settings.serviceUrl, serviceUrl);
    replace(settings.product, product);
    replace(settings.productVersion, productVersion);
    replace(settings.bonusCatalogs, bonusCatalogs);
    replace(settings.manufacturerCatalogs, manufacturerCatalogs);
    return settings;
}
