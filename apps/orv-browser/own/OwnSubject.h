#pragma once

#include <cstddef>
#include <set>

#include <QString>

#include "apps/orv-browser/models/ItemIndex.h"
#include "apps/orv-browser/models/Place.h"

/// What "Rename" and "Delete" mean at the moment: the selected items, or the place where the user is. A
/// value.
struct OwnSubject
{
    Place place;
    std::size_t items = 0;          ///< how many are selected; none for the place
    std::set<fileString> databases; ///< in which the items are

    /// Why it cannot be renamed, or removed, for people; empty when it can.
    QString whyNotRenamed(const ItemIndex& index) const;
    QString whyNotRemoved(const ItemIndex& index) const;

private:
    QString whyNotChanged(const ItemIndex& index) const;
};
