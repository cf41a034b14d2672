#pragma once

#include <QRect>

class QModelIndex;
class QPainter;
class QPalette;

/// Paints the picture of an item: complete, in the centre of its area, and enlarged at most to twice its
/// size, so that a small one stays sharp. Interface thread.
namespace ItemPicture {

/// Paints the picture, or a placeholder while it is loaded or if there is none.
/// @param index of a `GalleryModel`
void paint(QPainter& painter, const QRect& area, const QModelIndex& index, const QPalette& palette);

/// The size at which a picture of this size is shown in this area.
QSize shownSize(const QSize& picture, const QSize& area);

} // namespace ItemPicture
