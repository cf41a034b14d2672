#include "apps/orv-browser/gallery/Star.h"

#include <cmath>

#include <QPainter>

namespace {

constexpr int kPoints = 10; // five outer and five inner ones
constexpr double kInner = 0.42;
const QColor kGold(240, 178, 32);

QPolygonF starIn(const QRectF& area)
{
    QPolygonF star;
    const double radius = area.width() / 2;
    for (int point = 0; point < kPoints; ++point) {
        const double angle = 3.14159265358979 * (point / 5.0 - 0.5);
        const double length = point % 2 == 0 ? radius : radius * kInner;
        star << area.center() + QPointF(std::cos(angle), std::sin(angle)) * length;
    }
    return star;
}

} // namespace

void Star::draw(QPainter& painter, const QRectF& area, bool isFilled)
{
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(kGold.darker(isFilled ? 125 : 110), area.width() / 14, Qt::SolidLine, Qt::SquareCap,
                        Qt::RoundJoin));
    painter.setBrush(isFilled ? QBrush(kGold) : QBrush(QColor(255, 255, 255, 160)));
    painter.drawPolygon(starIn(area));
    painter.restore();
}
