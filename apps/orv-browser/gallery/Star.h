#pragma once

#include <QRectF>

class QPainter;

/// The star that marks a favourite.
namespace Star {

/// @param isFilled a favourite; else only its outline, as the offer to make it one
void draw(QPainter& painter, const QRectF& area, bool isFilled);

} // namespace Star
