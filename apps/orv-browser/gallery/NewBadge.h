#pragma once

#include <QString>

#include "apps/orv-browser/models/NewItems.h"

class QModelIndex;
class QPainter;
class QRect;
class QStyleOptionViewItem;

/// The badge of an item that an update brought or changed. Interface thread.
namespace NewBadge {

/// "New" or "Changed" for people; empty for what is neither.
QString text(NewItems::Kind kind);
/// Draws the badge into a corner or at an edge of an area; nothing for what is not new.
/// @param index of a `GalleryModel`
/// @param alignment as if the language ran from left to right
void draw(QPainter& painter, const QStyleOptionViewItem& option, const QRect& area, int alignment,
          const QModelIndex& index);

} // namespace NewBadge
