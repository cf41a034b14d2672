#include "apps/orv-browser/gallery/FoundItems.h"

#include "OrvLibrary/UI/TreeItemData.h"
#include "apps/orv-browser/gallery/PictureStore.h"
#include "apps/orv-browser/models/ItemDrag.h"

FoundItems::FoundItems(QObject* parent) : QStandardItemModel(parent), mPictures(new PictureStore(this))
{
    connect(mPictures, &PictureStore::loaded, this, &FoundItems::pictureLoaded);
}

QVariant FoundItems::data(const QModelIndex& index, int role) const
{
    if (role == Qt::DecorationRole)
        if (const auto* node = dynamic_cast<const Library::TreeData*>(itemFromIndex(index)))
            return mPictures->picture(node->getDatabasePath(), node->getId());
    return QStandardItemModel::data(index, role);
}

QMimeData* FoundItems::mimeData(const QModelIndexList& indexes) const
{
    std::vector<ItemDrag::Item> items;
    for (const QModelIndex& index : indexes)
        if (const auto* node = dynamic_cast<const Library::TreeData*>(itemFromIndex(index)))
            items.push_back({node->getDatabasePath(), node->getId(), node->text()});
    return items.empty() ? nullptr : ItemDrag::encode(items);
}

void FoundItems::pictureLoaded()
{
    // Views paint only what is seen, so one change of all is cheaper than a search for the row of one.
    if (rowCount() > 0)
        Q_EMIT dataChanged(index(0, 0), index(rowCount() - 1, 0), {Qt::DecorationRole});
}
