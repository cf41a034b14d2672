#include "apps/orv-browser/WindowMemory.h"

#include <utility>

#include <QGuiApplication>
#include <QScreen>
#include <QSplitter>

#include "apps/orv-browser/WindowState.h"
#include "apps/orv-browser/gallery/GalleryBar.h"
#include "apps/orv-browser/gallery/GalleryModel.h"
#include "apps/orv-browser/gallery/GalleryPane.h"
#include "apps/orv-browser/gallery/GalleryViews.h"
#include "apps/orv-browser/places/PlaceMemory.h"
#include "apps/orv-browser/places/PlacesPane.h"

namespace {

constexpr QSize kFirstSize(1180, 720);

/// The geometry, changed so that it fits this screen: the window may have been on a larger one.
QRect onScreen(const QRect& geometry)
{
    const QRect screen = QGuiApplication::primaryScreen()->availableGeometry();
    const QSize size = geometry.size().boundedTo(screen.size());
    const int x = qBound(screen.left(), geometry.x(), screen.right() - size.width() + 1);
    const int y = qBound(screen.top(), geometry.y(), screen.bottom() - size.height() + 1);
    return {QPoint(x, y), size};
}

} // namespace

WindowMemory::WindowMemory(fileString root, QWidget& window, QSplitter& panes, PlacesPane& places,
                           GalleryPane& gallery)
    : mRoot(std::move(root)), mWindow(window), mPanes(panes), mPlaces(places), mGallery(gallery)
{
}

void WindowMemory::restore()
{
    const WindowState state = WindowState::load(mRoot);
    mGeometry = state.geometry;
    place();
    if (state.isMaximized)
        mWindow.setWindowState(Qt::WindowMaximized);
    if (!state.panes.isEmpty())
        mPanes.setSizes(state.panes);
    mGallery.bar().setSide(state.side);
    mGallery.bar().setGrid(state.isGrid);
    mGallery.bar().setOrder(state.order, state.isDescending);
    mPlaces.memory().setOpen(state.open);
    mGallery.showItem(state.place, state.selectedDatabase, state.selectedItem);
    mPlaces.setCurrent(state.place);
}

void WindowMemory::place()
{
    const QRect first(QGuiApplication::primaryScreen()->availableGeometry().topLeft(), kFirstSize);
    mWindow.setGeometry(onScreen(mGeometry.isNull() ? first : mGeometry));
}

void WindowMemory::save() const
{
    WindowState state;
    state.geometry = mWindow.normalGeometry();
    state.isMaximized = mWindow.isMaximized();
    state.panes = mPanes.sizes();
    state.side = mGallery.bar().side();
    state.isGrid = mGallery.bar().isGrid();
    state.order = mGallery.bar().order();
    state.isDescending = mGallery.bar().isDescending();
    state.place = mGallery.place();
    state.open = mPlaces.memory().open();
    const std::vector<int> rows = mGallery.views().selectedRows();
    if (rows.size() == 1) {
        const ItemDrag::Item item = mGallery.views().model().itemAt(rows.front());
        state.selectedDatabase = item.database;
        state.selectedItem = item.id;
    }
    state.save(mRoot);
}
