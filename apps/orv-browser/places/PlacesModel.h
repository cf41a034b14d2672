#pragma once

#include <functional>
#include <memory>

#include <QStandardItemModel>
#include <QThreadPool>

#include "OrvLibrary/UI/TreeData.h"
#include "apps/orv-browser/models/LibraryContent.h"
#include "apps/orv-browser/models/Place.h"

class LibraryNews;
class MakerLogos;

/// The tree of places: the user's own lists and what is new, then the library categories, the catalogs in
/// them and their folders. Items are not in it; the gallery shows them. Folders come into the tree when the
/// node above them is opened. Lives on the interface thread.
class PlacesModel : public QStandardItemModel
{
    Q_OBJECT

public:
    /// How many items a place holds, as an `int`; invalid while that is not known.
    static constexpr int kCountRole = Qt::UserRole + 1;
    /// Why a catalog cannot be read, for people; empty for a sound one.
    static constexpr int kProblemRole = Qt::UserRole + 2;

    /// A `State` as an int.
    static constexpr int kStateRole = Qt::UserRole + 3;

    /// The state that the tree shows beside a catalog that can be read.
    enum class State
    {
        None,
        New,    ///< the last updates brought items that the user has not seen
        Waiting ///< the last check found a newer version
    };

    /// @param content and news outlive the model
    PlacesModel(const LibraryContent& content, const LibraryNews& news, QObject* parent = nullptr);
    ~PlacesModel() override;

    /// The place of a row; everything for an invalid index.
    Place placeOf(const QModelIndex& index) const;
    /// The row of a place, whose parents are filled on the way; invalid when there is none.
    QModelIndex indexOf(const Place& place);
    /// Calls for every catalog, with the row of its category.
    void
    forEachCatalog(const std::function<void(const QModelIndex& category, Library::TreeData& catalog)>& call);
    /// How many items the lists hold.
    void setListCounts(int favourites, int recent, int news);

    /// The logos of the makers, which stand beside their catalogs.
    MakerLogos& logos() { return *mLogos; }

    bool hasChildren(const QModelIndex& parent = {}) const override;
    bool canFetchMore(const QModelIndex& parent) const override;
    void fetchMore(const QModelIndex& parent) override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;

    // Items may be dropped on the user's own libraries and their folders, which makes copies there.
    Qt::DropActions supportedDropActions() const override { return Qt::CopyAction; }
    QStringList mimeTypes() const override;
    bool canDropMimeData(const QMimeData* data, Qt::DropAction action, int row, int column,
                         const QModelIndex& parent) const override;
    bool dropMimeData(const QMimeData* data, Qt::DropAction action, int row, int column,
                      const QModelIndex& parent) override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;

Q_SIGNALS:
    /// Catalogs are about to leave the tree, because their files have gone.
    void aboutToLose();
    /// They have left.
    void lost();
    /// A catalog's folders are about to leave the tree, because the catalog was read again.
    void aboutToRefill(const fileString& database);
    /// The catalog's node can be opened again.
    void refilled(const QModelIndex& catalog);
    /// The user dropped items on a folder.
    void itemsDropped(const QMimeData* data, const Place& target);

private:
    Library::TreeData* node(const QModelIndex& index) const;
    /// The catalog of a node as the tree shows it; null while it is not read.
    std::shared_ptr<const CatalogContent> contentOf(const Library::TreeData& node) const;
    void showCatalogs();
    void showCategory(QStandardItem& category, int number);
    void showIndex();
    void updateCounts();
    void showStates();
    void showLogos();
    QIcon iconOf(const Place& place, const CatalogContent* content) const;
    QVariant countOf(const Place& place, const CatalogContent* content) const;
    State stateOf(const Place& place) const;
    QString stateText(const Place& place) const;

    const LibraryContent& mContent;
    const LibraryNews& mNews;
    MakerLogos* mLogos;
    std::shared_ptr<const ItemIndex> mShown; ///< the index whose folders the tree shows
};
