#pragma once

#include <map>
#include <set>
#include <utility>

#include <QObject>
#include <QString>

#include "OrvLibrary/host/fileString.h"

class LibraryModel;
class QModelIndex;
class QTreeView;

/// Keeps the user's place in the tree while catalogs are read again: what is open, what is chosen and how far
/// it is scrolled come back as the rows do. Lives as long as the view.
class TreePlace : public QObject
{
    Q_OBJECT

public:
    TreePlace(QTreeView& view, LibraryModel& model);

    /// Takes down the place in one catalog, just before it is read again.
    void remember(const fileString& database);

private:
    /// A folder or item within a catalog: whether it is an item, and its database id.
    using Node = std::pair<bool, long long>;

    struct Place
    {
        std::set<Node> open;
        Node current{false, -1};
        bool hasCurrent = false;
        int scroll = 0;
    };

    void collect(const QModelIndex& parent, Place& place) const;
    void restore(const QModelIndex& parent);

    QTreeView& mView;
    LibraryModel& mModel;
    std::map<fileString, Place> mPlaces;
};
