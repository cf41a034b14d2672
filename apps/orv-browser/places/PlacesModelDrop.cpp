// Dropping items on the user's own libraries. The receiver of `itemsDropped` copies them.
#include <QMimeData>

#include "apps/orv-browser/models/ItemDrag.h"
#include "apps/orv-browser/places/PlacesModel.h"

QStringList PlacesModel::mimeTypes() const
{
    return {ItemDrag::mimeType()};
}

Qt::ItemFlags PlacesModel::flags(const QModelIndex& index) const
{
    const Qt::ItemFlags given = QStandardItemModel::flags(index) & ~Qt::ItemIsDragEnabled;
    const Place place = placeOf(index);
    const bool takesItems = place.isInCatalog() && place.category == LibraryContent::kUserCategory;
    return takesItems ? given | Qt::ItemIsDropEnabled : given & ~Qt::ItemIsDropEnabled;
}

bool PlacesModel::canDropMimeData(const QMimeData* data, Qt::DropAction action, int, int,
                                  const QModelIndex& parent) const
{
    return parent.isValid() && (flags(parent) & Qt::ItemIsDropEnabled) && action == Qt::CopyAction &&
           data->hasFormat(ItemDrag::mimeType());
}

bool PlacesModel::dropMimeData(const QMimeData* data, Qt::DropAction action, int row, int column,
                               const QModelIndex& parent)
{
    if (!canDropMimeData(data, action, row, column, parent))
        return false;
    Q_EMIT itemsDropped(data, placeOf(parent));
    return true;
}
