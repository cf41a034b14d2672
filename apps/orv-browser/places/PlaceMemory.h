#pragma once

#include <vector>

#include <QObject>

#include "apps/orv-browser/models/Place.h"

class PlacesModel;
class QModelIndex;
class QTreeView;

/// Keeps the state of the tree of places while catalogs are read again: the same nodes are open afterwards,
/// and the same place is current. Lives as long as the view.
class PlaceMemory : public QObject
{
    Q_OBJECT

public:
    PlaceMemory(QTreeView& view, PlacesModel& model);

    /// The places that are open.
    const std::vector<Place>& open() const { return mOpen; }
    /// Opens places when their catalogs have been read.
    void setOpen(std::vector<Place> places);
    /// Makes a place the current one when its catalog has been read.
    void wantCurrent(const Place& place) { mCurrent = place; }
    /// Whether the tree is being changed by the library. Its current place is then not a choice of the user.
    bool isRestoring() const { return mIsRestoring; }

Q_SIGNALS:
    /// The tree has been restored as far as the new content allows.
    void restored();

private:
    void noteOpened(const QModelIndex& index);
    void noteClosed(const QModelIndex& index);
    void remember(const fileString& database);
    void restore(const QModelIndex& catalog);

    QTreeView& mView;
    PlacesModel& mModel;
    std::vector<Place> mOpen;
    Place mCurrent; ///< will become the current place again; everything for none
    bool mIsRestoring = false;
};
