#pragma once

#include <vector>

#include <QString>

#include "OrvLibrary/host/fileString.h"

class QMimeData;

/// What is carried when items are dragged: from which catalogs, and their database ids. Programs that know
/// nothing of catalogs get the names as text.
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
/// The items, without names; none when the data is of another kind or damaged.
std::vector<Item> decode(const QMimeData& data);

} // namespace ItemDrag
