#include "OrvHost/history/CatalogPins.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

namespace OrvHost {

namespace {

const char* const kFileName = "catalog-pins.json";

/// Names of any bytes fit into a text: what is no plain ASCII letter stands as "%xx".
CatalogPlace placeOf(const QJsonValue& key)
{
    return CatalogPlaces::ofKey(QByteArray::fromPercentEncoding(key.toString().toUtf8()).toStdString());
}

QJsonObject readObject(const fileString& path)
{
    QFile file(QFile::decodeName(path.toNativeString().c_str()));
    if (!file.open(QIODevice::ReadOnly))
        return {};
    return QJsonDocument::fromJson(file.readAll()).object();
}

} // namespace

CatalogPins::CatalogPins(const fileString& root) : mPath(root / fileString(kFileName))
{
    const QJsonObject document = readObject(mPath);
    for (const QJsonValue& key : document["held"].toArray())
        mHeld.insert(placeOf(key));
}

} // namespace OrvHost
