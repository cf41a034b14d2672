#pragma once

#include <QString>

#include "apps/orv-browser/models/NewItems.h"

class QModelIndex;
class QPainter;
class QRect;
class QStyleOptionViewItem;

/// Draws the badge of an item that an update has added or changed. Interface thread.
namespace NewBadge {

/// "New" or "Changed" for people; empty for other items.
QString text(NewItems::Kind kind);
/// Draws the badge into a corner or at an edge of an area. Draws nothing for items that are not new.
/// @param index of a `GalleryModel`
/// @param alignment as for a language written from left to right
void draw(QPainter& painter, const QStyleOptionViewItem& option, const QRect& area, int alignment,
          const QModelIndex& index);

} // namespace NewBadge
