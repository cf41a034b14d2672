// How it works: the grid and the list are two views of one model and one selection, so that changing the view
// keeps what is selected. When other items are shown, those that were selected are looked for by catalog, id
// and name and selected again; the details are told once, at the end. The preview is made when it is first
// needed; `GalleryInput` reads wheel, keys and hovering off both views.
#include "apps/orv-browser/gallery/GalleryViews.h"

#include <algorithm>

#include <QHeaderView>
#include <QListView>
#include <QScrollBar>
#include <QTreeView>

#include "apps/orv-browser/gallery/GalleryDelegate.h"
#include "apps/orv-browser/gallery/GalleryInput.h"
#include "apps/orv-browser/gallery/GalleryModel.h"
#include "apps/orv-browser/gallery/ItemPreview.h"

namespace {

constexpr int kMostKept = 1000; // selected items that are kept when the items change
constexpr int kNameWidth = 260; // width of the list's first column in pixels, at first
constexpr int kColumnWidth = 150;

} // namespace

GalleryViews::GalleryViews(const UserLists& lists, QWidget* parent)
    : QStackedWidget(parent),
      mModel(new GalleryModel(lists, this)),
      mSelection(new QItemSelectionModel(mModel, this)),
      mGrid(new QListView),
      mList(new QTreeView),
      mTiles(new GalleryDelegate(true, this)),
      mRows(new GalleryDelegate(false, this))
{
    buildGrid();
    buildList();
    addWidget(mGrid);
    addWidget(mList);
    connect(mSelection, &QItemSelectionModel::selectionChanged, this, [this] {
        if (!mIsRestoring)
            Q_EMIT selectionChanged();
    });
}

/// Deletes the views first, because they still use the model while they exist.
GalleryViews::~GalleryViews()
{
    delete mGrid;
    delete mList;
}

void GalleryViews::buildGrid()
{
    mGrid->setObjectName(QStringLiteral("gallery"));
    mGrid->setAccessibleName(tr("Items"));
    mGrid->setModel(mModel);
    mGrid->setSelectionModel(mSelection);
    mGrid->setItemDelegate(mTiles);
    // A view with wrapping rows is laid out quickly, whatever their number; one with free positions is not.
    mGrid->setFlow(QListView::LeftToRight);
    mGrid->setWrapping(true);
    mGrid->setResizeMode(QListView::Adjust);
    mGrid->setUniformItemSizes(true);
    listenTo(*mGrid);
}

void GalleryViews::buildList()
{
    mList->setObjectName(QStringLiteral("galleryList"));
    mList->setAccessibleName(tr("Items"));
    mList->setModel(mModel);
    mList->setSelectionModel(mSelection);
    mList->setItemDelegate(mRows);
    mList->setRootIsDecorated(false);
    mList->setUniformRowHeights(true);
    mList->setSelectionBehavior(QAbstractItemView::SelectRows);
    mList->setAlternatingRowColors(true);
    for (int column = 0; column < GalleryModel::kColumns; ++column)
        mList->setColumnWidth(column, column == GalleryModel::kName ? kNameWidth : kColumnWidth);
    mList->header()->setSectionResizeMode(GalleryModel::kName, QHeaderView::Stretch);
    mList->header()->setSectionsMovable(false);
    mList->header()->setAccessibleName(tr("Columns"));
    listenTo(*mList);
}

void GalleryViews::listenTo(QAbstractItemView& view)
{
    view.setSelectionMode(QAbstractItemView::ExtendedSelection);
    view.setDragEnabled(true);
    view.setDragDropMode(QAbstractItemView::DragOnly);
    view.setEditTriggers(QAbstractItemView::NoEditTriggers);
    view.setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
    view.setContextMenuPolicy(Qt::CustomContextMenu);
    connect(&view, &QWidget::customContextMenuRequested, this,
            [this, &view](const QPoint& at) { Q_EMIT menuAsked(view.viewport()->mapToGlobal(at)); });
    connect(&view, &QAbstractItemView::activated, this, &GalleryViews::activated);
    auto* input = new GalleryInput(view);
    connect(input, &GalleryInput::zoomAsked, this, &GalleryViews::zoomAsked);
    connect(input, &GalleryInput::starClicked, this,
            [this](const QModelIndex& index) { Q_EMIT starClicked(index.row()); });
    connect(input, &GalleryInput::previewAsked, this, &GalleryViews::openPreview);
    connect(input, &GalleryInput::hovered, this,
            [this](const QModelIndex& index) { preview().showSmall(index, QCursor::pos()); });
    connect(input, &GalleryInput::hoverEnded, this, [this] {
        if (mPreview)
            mPreview->hide();
    });
}

QAbstractItemView& GalleryViews::view() const
{
    if (currentWidget() == mGrid)
        return *mGrid;
    return *mList;
}

ItemPreview& GalleryViews::preview()
{
    if (!mPreview) {
        mPreview = new ItemPreview(window());
        connect(mPreview, &ItemPreview::stepAsked, this, &GalleryViews::stepPreview);
        connect(mModel, &QAbstractItemModel::modelReset, mPreview, &QWidget::hide);
        connect(&mModel->pictures(), &PictureStore::loaded, mPreview, qOverload<>(&QWidget::update));
    }
    return *mPreview;
}

void GalleryViews::openPreview()
{
    if (mSelection->currentIndex().isValid())
        preview().showLarge(mSelection->currentIndex());
}

void GalleryViews::stepPreview(int key)
{
    const bool isForward =
        key == Qt::Key_Down || (key == Qt::Key_Right) == (layoutDirection() == Qt::LeftToRight);
    const int row = std::clamp(mSelection->currentIndex().row() + (isForward ? 1 : -1), 0,
                               std::max(0, mModel->rowCount() - 1));
    mSelection->setCurrentIndex(mModel->index(row, 0), QItemSelectionModel::ClearAndSelect);
    view().scrollTo(mModel->index(row, 0));
    openPreview();
}

void GalleryViews::show(const ItemQuery::Found& found, bool isSamePlace)
{
    std::vector<ItemDrag::Item> selected;
    for (const int row : selectedRows())
        if (selected.size() < kMostKept)
            selected.push_back(mModel->itemAt(row));
    ItemDrag::Item current;
    if (mSelection->currentIndex().isValid())
        current = mModel->itemAt(mSelection->currentIndex().row());
    const int scroll = isSamePlace ? view().verticalScrollBar()->value() : 0;
    mIsRestoring = true;
    mModel->show(found);
    restore(selected, current, scroll);
    mIsRestoring = false;
    Q_EMIT selectionChanged();
}

void GalleryViews::restore(const std::vector<ItemDrag::Item>& selected, const ItemDrag::Item& current,
                           int scroll)
{
    QItemSelection selection;
    for (const ItemDrag::Item& item : selected) {
        const int row = mModel->rowOf(item.database, item.id);
        if (row >= 0 && mModel->itemAt(row).name == item.name)
            selection.select(mModel->index(row, 0), mModel->index(row, GalleryModel::kColumns - 1));
    }
    mSelection->select(selection, QItemSelectionModel::ClearAndSelect);
    const int row = current.id < 0 ? -1 : mModel->rowOf(current.database, current.id);
    if (row >= 0 && !selection.isEmpty())
        mSelection->setCurrentIndex(mModel->index(row, 0), QItemSelectionModel::NoUpdate);
    view().doItemsLayout();
    view().verticalScrollBar()->setValue(scroll);
}

void GalleryViews::setGrid(bool isGrid)
{
    const bool hadFocus = view().hasFocus();
    setCurrentWidget(isGrid ? static_cast<QWidget*>(mGrid) : mList);
    if (mSelection->currentIndex().isValid())
        view().scrollTo(mSelection->currentIndex());
    if (hadFocus)
        view().setFocus();
}

void GalleryViews::setSide(int side)
{
    const QModelIndex anchor =
        mSelection->currentIndex().isValid() ? mSelection->currentIndex() : mGrid->indexAt(QPoint(20, 20));
    mTiles->setSide(side);
    mGrid->setGridSize(mTiles->tileSize(*mGrid));
    mGrid->doItemsLayout();
    if (anchor.isValid())
        mGrid->scrollTo(anchor);
}

std::vector<int> GalleryViews::selectedRows() const
{
    std::vector<int> rows;
    for (const QItemSelectionRange& range : mSelection->selection())
        if (range.left() == GalleryModel::kName)
            for (int row = range.top(); row <= range.bottom(); ++row)
                rows.push_back(row);
    std::sort(rows.begin(), rows.end());
    return rows;
}

bool GalleryViews::select(const fileString& database, long long item)
{
    const int row = mModel->rowOf(database, item);
    if (row < 0)
        return false;
    const QModelIndex index = mModel->index(row, 0);
    mSelection->setCurrentIndex(index, QItemSelectionModel::ClearAndSelect);
    view().scrollTo(index);
    return true;
}

void GalleryViews::focusItems()
{
    view().setFocus();
    if (selectedRows().empty() && mModel->rowCount() > 0)
        mSelection->setCurrentIndex(mModel->index(0, 0), QItemSelectionModel::ClearAndSelect);
}
