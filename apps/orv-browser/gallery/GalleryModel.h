#pragma once

#include <set>
#include <vector>

#include <QAbstractTableModel>

#include "apps/orv-browser/gallery/PictureStore.h"
#include "apps/orv-browser/models/ItemDrag.h"
#include "apps/orv-browser/models/ItemQuery.h"
#include "apps/orv-browser/models/UserLists.h"

/// The items in the gallery, as found by a query, in their order. Names and pictures are looked up when a
/// view needs them, so 200,000 items take only two megabytes. Lives on the interface thread.
class GalleryModel : public QAbstractTableModel
{
    Q_OBJECT

public:
    enum Column
    {
        kName,
        kCatalog,
        kStyle,
        kMaker,
        kColumns
    };
    static constexpr int kFavouriteRole = Qt::UserRole + 1;    ///< a bool
    static constexpr int kPictureRole = Qt::UserRole + 2;      ///< a QImage; null if it is not loaded
    static constexpr int kPictureStateRole = Qt::UserRole + 3; ///< PictureStore::State; starts the loading

    static constexpr int kNewRole = Qt::UserRole + 4; ///< NewItems::Kind as an int

    /// @param lists must outlive the model
    GalleryModel(const UserLists& lists, QObject* parent = nullptr);

    /// Shows other items.
    void show(const ItemQuery::Found& found);
    const ItemQuery::Found& found() const { return mFound; }
    PictureStore& pictures() { return *mPictures; }

    /// An item as the rest of the window knows it.
    ItemDrag::Item itemAt(int row) const;
    /// The item with everything the gallery knows about it.
    const CatalogContent::Item& contentAt(int row) const;
    const CatalogContent& catalogAt(int row) const;
    /// The row of an item; -1 if it is not shown.
    int rowOf(const fileString& database, long long item) const;

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;
    QStringList mimeTypes() const override { return {ItemDrag::mimeType()}; }
    QMimeData* mimeData(const QModelIndexList& indexes) const override;
    Qt::DropActions supportedDragActions() const override { return Qt::CopyAction; }

private:
    QString text(ItemRef ref, int column) const;
    QString toolTip(ItemRef ref) const;
    QString accessibleText(ItemRef ref) const;
    NewItems::Kind newKind(ItemRef ref) const;
    void readFavourites();
    void changeAll(const QVector<int>& roles);

    const UserLists& mLists;
    PictureStore* mPictures;
    ItemQuery::Found mFound;
    std::set<UserLists::Key> mFavourites;
};
