#pragma once

#include <vector>

#include <QString>

#include "apps/orv-browser/models/ItemIndex.h"
#include "apps/orv-browser/models/Place.h"

/// The names of places for people, and the places above them. Interface thread.
namespace PlaceNames {

QString name(const Place& place, const ItemIndex& index);
QString category(int category);
/// The places from "everything" down to this one.
std::vector<Place> way(const Place& place, const ItemIndex& index);

} // namespace PlaceNames
