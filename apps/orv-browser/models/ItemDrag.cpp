#include "apps/orv-browser/models/ItemDrag.h"

#include <QDataStream>
#include <QMimeData>

QString ItemDrag::mimeType()
{
    return QStringLiteral("application/x-orv-library-items");
}

QMimeData* ItemDrag::encode(const std::vector<Item>& items)
{
    QByteArray bytes;
    QDataStream stream(&bytes, QIODevice::WriteOnly);
    QStringList names;
    for (const Item& item : items) {
        stream << QByteArray::fromStdString(item.database.toNativeString()) << qint64{item.id};
        names << item.name;
    }
    auto* data = new QMimeData;
    data->setData(mimeType(), bytes);
    data->setText(names.join(QLatin1Char('\n')));
    return data;
}

std::vector<ItemDrag::Item> ItemDrag::decode(const QMimeData& data)
{
    std::vector<Item> items;
    QDataStream stream(data.data(mimeType()));
    while (!stream.atEnd()) {
        QByteArray database;
        qint64 id = -1;
        stream >> database >> id;
        if (stream.status() != QDataStream::Ok)
            return {};
        items.push_back({fileString(database.toStdString()), id, QString()});
    }
    return items;
}
