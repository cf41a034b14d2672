#pragma once

#include <vector>

#include <QList>
#include <QRect>

#include "OrvLibrary/host/fileString.h"
#include "apps/orv-browser/models/ItemQuery.h"
#include "apps/orv-browser/models/Place.h"

/// How the user left the window, kept in "browser-state.json" below the root. A value.
struct WindowState
{
    QRect geometry; ///< null for the first start
    bool isMaximized = false;
    QList<int> panes; ///< widths of places, gallery and details; empty for the first start
    int side = 128;   ///< of the pictures, in pixels
    bool isGrid = true;
    ItemQuery::Order order = ItemQuery::Order::Name;
    bool isDescending = false;
    Place place;
    std::vector<Place> open;     ///< places that are open in the tree
    fileString selectedDatabase; ///< of the one item that was selected
    long long selectedItem = -1;

    /// What the file says; as at the first start where it says nothing or nothing of use.
    static WindowState load(const fileString& root);
    /// Failures are passed over: the next start then finds an older state.
    void save(const fileString& root) const;
};
