#include "apps/orv-browser/gallery/GalleryModel.h"

#include <algorithm>

#include <QMimeData>

#include "apps/orv-browser/gallery/NewBadge.h"
#include "apps/orv-browser/models/Names.h"

GalleryModel::GalleryModel(const UserLists& lists, QObject* parent)
    : QAbstractTableModel(parent), mLists(lists), mPictures(new PictureStore(this))
{
    mFound.index = std::make_shared<const ItemIndex>();
    readFavourites();
    // Views paint only visible rows, so announcing a change of all rows is cheaper than finding the right
    // ones.
    connect(mPictures, &PictureStore::loaded, this, [this] { changeAll({kPictureRole, kPictureStateRole}); });
    connect(&mLists, &UserLists::favouritesChanged, this, [this] {
        readFavourites();
        changeAll({kFavouriteRole});
    });
}

void GalleryModel::readFavourites()
{
    const std::vector<UserLists::Key> keys = mLists.favourites();
    mFavourites = std::set<UserLists::Key>(keys.begin(), keys.end());
}

void GalleryModel::changeAll(const QVector<int>& roles)
{
    if (rowCount() > 0)
        Q_EMIT dataChanged(index(0, 0), index(rowCount() - 1, kColumns - 1), roles);
}

void GalleryModel::show(const ItemQuery::Found& found)
{
    beginResetModel();
    mFound = found;
    endResetModel();
}

const CatalogContent& GalleryModel::catalogAt(int row) const
{
    return mFound.index->catalogOf(mFound.items[static_cast<std::size_t>(row)]);
}

const CatalogContent::Item& GalleryModel::contentAt(int row) const
{
    return mFound.index->item(mFound.items[static_cast<std::size_t>(row)]);
}

ItemDrag::Item GalleryModel::itemAt(int row) const
{
    const CatalogContent& catalog = catalogAt(row);
    const CatalogContent::Item& item = contentAt(row);
    return {catalog.database(), item.id, catalog.itemName(item)};
}

int GalleryModel::rowOf(const fileString& database, long long item) const
{
    const int catalog = mFound.index->catalogAt(database);
    const int position =
        catalog < 0 ? -1 : mFound.index->catalogs()[static_cast<std::size_t>(catalog)]->itemAt(item);
    const ItemRef ref{static_cast<std::uint32_t>(catalog), static_cast<std::uint32_t>(position)};
    const auto found =
        position < 0 ? mFound.items.end() : std::find(mFound.items.begin(), mFound.items.end(), ref);
    return found == mFound.items.end() ? -1 : static_cast<int>(found - mFound.items.begin());
}

int GalleryModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(mFound.items.size());
}

int GalleryModel::columnCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : kColumns;
}

QString GalleryModel::text(ItemRef ref, int column) const
{
    const CatalogContent::Item& item = mFound.index->item(ref);
    switch (column) {
    case kName:
        return mFound.index->name(ref);
    case kCatalog:
        return mFound.index->catalogOf(ref).name();
    case kStyle:
        return Names::style(item.style);
    default:
        return Names::maker(item.maker);
    }
}

QString GalleryModel::toolTip(ItemRef ref) const
{
    const CatalogContent& catalog = mFound.index->catalogOf(ref);
    QStringList way = catalog.pathOf(mFound.index->item(ref).folder);
    way.prepend(catalog.name());
    return mFound.index->name(ref) + QLatin1Char('\n') + way.join(QStringLiteral(" › "));
}

QString GalleryModel::accessibleText(ItemRef ref) const
{
    const QString where = tr("%1, from %2").arg(mFound.index->name(ref), mFound.index->catalogOf(ref).name());
    const QString kind = NewBadge::text(newKind(ref));
    return kind.isEmpty() ? where : tr("%1, %2").arg(where, kind);
}

NewItems::Kind GalleryModel::newKind(ItemRef ref) const
{
    return mFound.news
               ? mFound.news->kindOf(mFound.index->catalogOf(ref).database(), mFound.index->item(ref).id)
               : NewItems::Kind::Old;
}

QVariant GalleryModel::data(const QModelIndex& index, int role) const
{
    if (!index.isValid() || index.row() >= rowCount())
        return {};
    const ItemRef ref = mFound.items[static_cast<std::size_t>(index.row())];
    const auto key = [&] {
        return UserLists::Key(mFound.index->catalogOf(ref).database(), mFound.index->item(ref).id);
    };
    switch (role) {
    case Qt::DisplayRole:
        return text(ref, index.column());
    case Qt::AccessibleTextRole:
        return index.column() == kName ? accessibleText(ref) : text(ref, index.column());
    case Qt::ToolTipRole:
        return toolTip(ref);
    case kNewRole:
        return static_cast<int>(newKind(ref));
    case kFavouriteRole:
        return mFavourites.count(key()) != 0;
    case kPictureStateRole:
        return static_cast<int>(mPictures->ask(key().first, key().second));
    case kPictureRole:
        return mPictures->picture(key().first, key().second);
    default:
        return {};
    }
}

QVariant GalleryModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole)
        return {};
    const QString titles[] = {tr("Name"), tr("Catalog"), tr("Style"), tr("Manufacturer")};
    return section >= 0 && section < kColumns ? titles[section] : QVariant();
}

Qt::ItemFlags GalleryModel::flags(const QModelIndex& index) const
{
    return index.isValid()
               ? Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemIsDragEnabled | Qt::ItemNeverHasChildren
               : Qt::NoItemFlags;
}

QMimeData* GalleryModel::mimeData(const QModelIndexList& indexes) const
{
    std::vector<ItemDrag::Item> items;
    for (const QModelIndex& index : indexes)
        if (index.column() == kName)
            items.push_back(itemAt(index.row()));
    return items.empty() ? nullptr : ItemDrag::encode(items);
}
