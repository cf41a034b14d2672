#pragma once

#include <QRect>

class QModelIndex;
class QPainter;
class QPalette;

/// How the picture of an item is painted wherever it stands: whole, in the middle of its area, and never more
/// than twice its own size, so that a small one stays sharp. Interface thread.
namespace ItemPicture {

/// The picture, or a placeholder while it is loaded and where there is none.
/// @param index of a `GalleryModel`
void paint(QPainter& painter, const QRect& area, const QModelIndex& index, const QPalette& palette);

/// The size in which a picture of a given size is shown in an area.
QSize shownSize(const QSize& picture, const QSize& area);

} // namespace ItemPicture
