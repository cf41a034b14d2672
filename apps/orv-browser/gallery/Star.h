#pragma once

#include <QRectF>

class QPainter;

/// The star that marks a favourite.
namespace Star {

/// @param isFilled whether the item is a favourite; if not, draws only the outline
void draw(QPainter& painter, const QRectF& area, bool isFilled);

} // namespace Star
