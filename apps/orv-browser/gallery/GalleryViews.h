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

/// The items as a grid of pictures or as a list: two views of one model, with one selection. Lives on the
/// interface thread.
class GalleryViews : public QStackedWidget
{
    Q_OBJECT

public:
    /// @param lists must outlive the views
    explicit GalleryViews(const UserLists& lists, QWidget* parent = nullptr);
    ~GalleryViews() override;

    GalleryModel& model() { return *mModel; }
    /// Shows other items. Selected items that are still shown stay selected. If they are from the same place,
    /// the scroll position stays, too.
    void show(const ItemQuery::Found& found, bool isSamePlace);
    void setGrid(bool isGrid);
    void setSide(int side);
    /// The rows of the selected items, in ascending order.
    std::vector<int> selectedRows() const;
    /// Selects one item and scrolls to it. Does nothing if it is not shown.
    bool select(const fileString& database, long long item);
    /// Moves the keyboard focus to the items. If no item is current, the first one becomes current.
    void focusItems();

Q_SIGNALS:
    /// The selection has changed.
    void selectionChanged();
    void zoomAsked(int steps);
    void starClicked(int row);
    /// The user wants the menu of the selected items.
    void menuAsked(const QPoint& globalPosition);
    /// The user pressed Enter on an item, or double-clicked it.
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
    ItemPreview* mPreview = nullptr; ///< made when first needed; owned by the window
    bool mIsRestoring = false;
};
