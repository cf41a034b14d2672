#pragma once

#include <vector>

#include <QString>

#include "OrvLibrary/host/fileString.h"

class QMimeData;

/// The data of dragged items: their catalogs and database ids. Other programs get the names as text.
namespace ItemDrag {

struct Item
{
    fileString database;
    long long id = -1;
    QString name;
};

/// "application/x-orv-library-items".
QString mimeType();
/// @return owned by the caller
QMimeData* encode(const std::vector<Item>& items);
/// The items, without names. Empty if the data is of another kind or damaged.
std::vector<Item> decode(const QMimeData& data);

} // namespace ItemDrag
