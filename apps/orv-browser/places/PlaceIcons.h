#pragma once

#include <QIcon>

#include "apps/orv-browser/models/Place.h"

class QPainter;
class QRect;

/// The icons of places, drawn rather than loaded, so that they are sharp at any size and fit light and dark
/// grounds. Interface thread.
namespace PlaceIcons {

/// The icon of a category, a catalog or a folder.
QIcon of(const Place& place);
/// The icon of a list of the user: favourites, recent or news.
QIcon list(Place::Kind kind);
/// The icon of what makes something new.
QIcon addition();
/// The icon of a catalog that cannot be read.
QIcon damaged();

/// The sign of a catalog that has an update waiting, or else items that are new.
void drawSign(QPainter& painter, const QRect& area, bool isWaiting);

} // namespace PlaceIcons
