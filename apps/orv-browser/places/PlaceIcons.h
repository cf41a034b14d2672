#pragma once

#include <QIcon>

#include "apps/orv-browser/models/Place.h"

/// The icons of places, drawn rather than loaded, so that they are sharp at any size and fit light and dark
/// grounds. Interface thread.
namespace PlaceIcons {

/// The icon of a category, a catalog or a folder.
QIcon of(const Place& place);
/// The icon of a list of the user: favourites or recent.
QIcon list(Place::Kind kind);
/// The icon of a catalog that cannot be read.
QIcon damaged();

} // namespace PlaceIcons
