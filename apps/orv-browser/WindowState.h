#pragma once

#include <vector>

#include <QList>
#include <QRect>

#include "OrvLibrary/host/fileString.h"
#include "apps/orv-browser/models/ItemQuery.h"
#include "apps/orv-browser/models/Place.h"

/// The state of the window when it was closed, stored in "browser-state.json" below the root. A plain value.
struct WindowState
{
    QRect geometry; ///< null for the first start
    bool isMaximized = false;
    QList<int> panes; ///< widths of places, gallery and details; empty at the first start
    int side = 128;   ///< side of the pictures in pixels
    bool isGrid = true;
    ItemQuery::Order order = ItemQuery::Order::Name;
    bool isDescending = false;
    Place place;
    std::vector<Place> open;     ///< open places in the tree
    fileString selectedDatabase; ///< the selected item, if it was only one
    long long selectedItem = -1;

    /// The content of the file. Values that are missing or not valid are those of the first start.
    static WindowState load(const fileString& root);
    /// Ignores failures; the next start then finds an older state.
    void save(const fileString& root) const;
};
