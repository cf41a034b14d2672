#pragma once

#include <vector>

#include <QStackedWidget>

#include "apps/orv-browser/models/ItemDrag.h"
#include "apps/orv-browser/models/ItemQuery.h"

class GalleryDelegate;
class GalleryInput;
class GalleryModel;
class ItemPreview;
class QAbstractItemView;
class QItemSelectionModel;
class QListView;
class QTreeView;
class UserLists;

/// The items as pictures or as a list: two views of one model with one selection. Lives on the interface
/// thread.
class GalleryViews : public QStackedWidget
{
    Q_OBJECT

public:
    /// @param lists outlive the views
    explicit GalleryViews(const UserLists& lists, QWidget* parent = nullptr);
    ~GalleryViews() override;

    GalleryModel& model() { return *mModel; }
    /// Shows other items. Those of the selected items that are still among them stay selected, and where
    /// they come from the same place the view stays where it is scrolled to.
    void show(const ItemQuery::Found& found, bool isSamePlace);
    void setGrid(bool isGrid);
    void setSide(int side);
    /// Rows of the selected items, in their order.
    std::vector<int> selectedRows() const;
    /// Selects one item and scrolls to it; does nothing for an item that is not shown.
    bool select(const fileString& database, long long item);
    /// Gives the keys to the items, and makes the first one current where none is.
    void focusItems();

Q_SIGNALS:
    /// Other items are selected, or none.
    void selectionChanged();
    void zoomAsked(int steps);
    void starClicked(int row);
    /// The user wants the menu of the selected items.
    void menuAsked(const QPoint& globalPosition);
    /// The user pressed Enter on an item, or clicked it twice.
    void activated();

private:
    void buildGrid();
    void buildList();
    void listenTo(QAbstractItemView& view);
    ItemPreview& preview();
    void openPreview();
    void stepPreview(int key);
    QAbstractItemView& view() const;
    void restore(const std::vector<ItemDrag::Item>& selected, const ItemDrag::Item& current, int scroll);

    GalleryModel* mModel;
    QItemSelectionModel* mSelection;
    QListView* mGrid;
    QTreeView* mList;
    GalleryDelegate* mTiles;
    GalleryDelegate* mRows;
    ItemPreview* mPreview = nullptr; ///< made when it is first wanted; owned by the window
    bool mIsRestoring = false;
};
