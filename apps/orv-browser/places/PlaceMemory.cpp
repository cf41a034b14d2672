#include "apps/orv-browser/places/PlaceMemory.h"

#include <algorithm>

#include <QTreeView>

#include "apps/orv-browser/places/PlacesModel.h"

PlaceMemory::PlaceMemory(QTreeView& view, PlacesModel& model) : QObject(&view), mView(view), mModel(model)
{
    connect(&mView, &QTreeView::expanded, this, &PlaceMemory::noteOpened);
    connect(&mView, &QTreeView::collapsed, this, &PlaceMemory::noteClosed);
    connect(&mModel, &PlacesModel::aboutToRefill, this, &PlaceMemory::remember);
    connect(&mModel, &PlacesModel::refilled, this, &PlaceMemory::restore);
    connect(&mModel, &PlacesModel::aboutToLose, this, [this] { mIsRestoring = true; });
    connect(&mModel, &PlacesModel::lost, this, [this] { mIsRestoring = false; });
}

void PlaceMemory::setOpen(std::vector<Place> places)
{
    mOpen = std::move(places);
    for (const Place& place : std::vector<Place>(mOpen))
        if (const QModelIndex index = mModel.indexOf(place); index.isValid())
            mView.expand(index);
}

void PlaceMemory::noteOpened(const QModelIndex& index)
{
    const Place place = mModel.placeOf(index);
    if (std::find(mOpen.begin(), mOpen.end(), place) == mOpen.end())
        mOpen.push_back(place);
}

void PlaceMemory::noteClosed(const QModelIndex& index)
{
    if (!mIsRestoring)
        mOpen.erase(std::remove(mOpen.begin(), mOpen.end(), mModel.placeOf(index)), mOpen.end());
}

void PlaceMemory::remember(const fileString& database)
{
    mIsRestoring = true; // removed rows change the current row
    const Place current = mModel.placeOf(mView.currentIndex());
    if (current.kind == Place::Kind::Folder && current.database == database)
        mCurrent = current;
}

void PlaceMemory::restore(const QModelIndex& catalog)
{
    const fileString database = mModel.placeOf(catalog).database;
    for (const Place& place : std::vector<Place>(mOpen)) // parents come before their children
        if (place.isInCatalog() && place.database == database)
            if (const QModelIndex index = mModel.indexOf(place); index.isValid())
                mView.expand(index);
    if (mCurrent.kind == Place::Kind::Folder && mCurrent.database == database) {
        if (const QModelIndex index = mModel.indexOf(mCurrent); index.isValid())
            mView.setCurrentIndex(index);
        mCurrent = {};
    }
    mIsRestoring = false;
    Q_EMIT restored();
}
