// Dragging items out of the tree, and dropping them on folders of the user's own libraries.
#include <QMimeData>

#include "apps/orv-browser/models/Background.h"
#include "apps/orv-browser/models/CatalogDatabase.h"
#include "apps/orv-browser/models/ItemDrag.h"
#include "apps/orv-browser/models/LibraryModel.h"

namespace {

/// Whether a node stands in one of the user's libraries; the other catalogs belong to the service.
bool isUsers(QModelIndex index)
{
    while (index.parent().isValid())
        index = index.parent();
    return index.row() == LibraryModel::kUserRow;
}

/// @return why not all were copied; empty when they were
QString copyItems(const std::vector<ItemDrag::Item>& items, const fileString& database, long long folder)
{
    try {
        for (const ItemDrag::Item& item : items)
            CatalogDatabase::copyItem(item.database, item.id, database, folder);
        return {};
    } catch (const std::exception& error) {
        return QString::fromUtf8(error.what());
    }
}

} // namespace

QStringList LibraryModel::mimeTypes() const
{
    return {ItemDrag::mimeType()};
}

QMimeData* LibraryModel::mimeData(const QModelIndexList& indexes) const
{
    std::vector<ItemDrag::Item> items;
    for (const QModelIndex& index : indexes) {
        const Library::TreeData* dragged = node(index);
        if (dragged && dragged->isItem())
            items.push_back({dragged->getDatabasePath(), dragged->getId(), dragged->text()});
    }
    return items.empty() ? nullptr : ItemDrag::encode(items);
}

bool LibraryModel::canDropMimeData(const QMimeData* data, Qt::DropAction action, int, int,
                                   const QModelIndex& parent) const
{
    const Library::TreeData* target = node(parent);
    const bool isFolder = target && !target->isLeaf() && target->getId() >= 0 && parent.parent().isValid();
    return isFolder && isUsers(parent) && action == Qt::CopyAction && data->hasFormat(ItemDrag::mimeType());
}

bool LibraryModel::dropMimeData(const QMimeData* data, Qt::DropAction action, int row, int column,
                                const QModelIndex& parent)
{
    if (!canDropMimeData(data, action, row, column, parent))
        return false;
    const fileString database = node(parent)->getDatabasePath();
    const long long folder = node(parent)->getId();
    const std::vector<ItemDrag::Item> items = ItemDrag::decode(*data);
    if (items.empty())
        return false;
    Background::run(
        mPool, this, [items, database, folder] { return copyItems(items, database, folder); },
        [this, database](const QString& problem) { Q_EMIT dropped(database, problem); });
    return true;
}
