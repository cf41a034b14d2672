#include "apps/orv-browser/places/TreePlace.h"

#include <QScrollBar>
#include <QTreeView>

#include "apps/orv-browser/models/LibraryModel.h"

TreePlace::TreePlace(QTreeView& view, LibraryModel& model) : QObject(&view), mView(view), mModel(model)
{
    connect(&mModel, &LibraryModel::filled, this, &TreePlace::restore);
}

void TreePlace::remember(const fileString& database)
{
    mModel.forEachCatalog([&](const QModelIndex&, Library::TreeData& catalog) {
        if (catalog.getDatabasePath() != database)
            return;
        Place place;
        collect(catalog.index(), place);
        place.scroll = mView.verticalScrollBar()->value();
        mPlaces[database] = place;
    });
}

void TreePlace::collect(const QModelIndex& parent, Place& place) const
{
    for (int row = 0; row < mModel.rowCount(parent); ++row) {
        const QModelIndex child = mModel.index(row, 0, parent);
        const Library::TreeData* node = mModel.node(child);
        if (!node)
            continue;
        const Node name(node->isLeaf(), node->getId());
        if (mView.isExpanded(child)) {
            place.open.insert(name);
            collect(child, place);
        }
        if (mView.currentIndex() == child) {
            place.current = name;
            place.hasCurrent = true;
        }
    }
}

void TreePlace::restore(const QModelIndex& parent)
{
    const Library::TreeData* filled = mModel.node(parent);
    const auto found = filled ? mPlaces.find(filled->getDatabasePath()) : mPlaces.end();
    if (found == mPlaces.end())
        return;
    Place& place = found->second;
    for (int row = 0; row < mModel.rowCount(parent); ++row) {
        const QModelIndex child = mModel.index(row, 0, parent);
        const Library::TreeData* node = mModel.node(child);
        if (!node)
            continue;
        const Node name(node->isLeaf(), node->getId());
        if (place.hasCurrent && name == place.current) {
            mView.setCurrentIndex(child);
            mView.verticalScrollBar()->setValue(place.scroll);
            place.hasCurrent = false;
        }
        if (place.open.erase(name) != 0)
            mView.expand(child); // which reads it, and comes back here
    }
    if (place.open.empty() && !place.hasCurrent)
        mPlaces.erase(found);
}
