#include "apps/orv-browser/places/PlaceIcons.h"

#include <functional>
#include <map>
#include <tuple>

#include <QPainter>
#include <QPainterPath>
#include <QPixmap>

#include "apps/orv-browser/gallery/Star.h"

namespace {

constexpr int kSide = 64; // pixels; views scale it down

/// Colours that can be told apart on light and on dark grounds.
const QColor kBlue(74, 137, 220);
const QColor kGreen(76, 166, 107);
const QColor kOrange(224, 141, 60);
const QColor kViolet(150, 111, 214);
const QColor kRed(214, 77, 77);
const QColor kGrey(140, 148, 160);

QIcon drawn(const std::function<void(QPainter&)>& draw)
{
    QPixmap pixmap(kSide, kSide);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    draw(painter);
    painter.end();
    return QIcon(pixmap);
}

QColor colourOf(int category)
{
    const QColor colours[] = {kBlue, kGreen, kOrange, kViolet};
    return category >= 0 && category < 4 ? colours[category] : kGrey;
}

/// A row of books for a category.
void drawShelf(QPainter& painter, const QColor& colour)
{
    painter.setBrush(colour);
    painter.drawRoundedRect(6, 8, 14, 42, 3, 3);
    painter.drawRoundedRect(24, 16, 14, 34, 3, 3);
    painter.setBrush(colour.lighter(130));
    painter.drawRoundedRect(42, 10, 14, 40, 3, 3);
    painter.setBrush(colour.darker(120));
    painter.drawRoundedRect(2, 52, 60, 6, 2, 2);
}

/// A book for a catalog.
void drawBook(QPainter& painter, const QColor& colour)
{
    painter.setBrush(colour.darker(125));
    painter.drawRoundedRect(10, 4, 44, 56, 6, 6);
    painter.setBrush(colour);
    painter.drawRoundedRect(18, 4, 36, 48, 5, 5);
    painter.setBrush(QColor(255, 255, 255, 210));
    painter.drawRoundedRect(25, 14, 22, 5, 2, 2);
    painter.drawRoundedRect(25, 24, 15, 5, 2, 2);
}

void drawFolder(QPainter& painter, const QColor& colour)
{
    painter.setBrush(colour.darker(115));
    painter.drawRoundedRect(4, 10, 28, 16, 4, 4);
    painter.setBrush(colour.lighter(115));
    painter.drawRoundedRect(4, 18, 56, 36, 5, 5);
}

void drawClock(QPainter& painter)
{
    painter.setBrush(kGrey);
    painter.drawEllipse(6, 6, 52, 52);
    painter.setPen(QPen(Qt::white, 6, Qt::SolidLine, Qt::RoundCap));
    painter.drawLine(32, 32, 32, 18);
    painter.drawLine(32, 32, 43, 38);
}

/// A star with four points.
void drawSparkle(QPainter& painter)
{
    painter.setBrush(kGreen);
    for (const auto& [x, y, size] : {std::tuple(26, 36, 26), std::tuple(52, 14, 12)}) {
        QPainterPath path(QPointF(x, y - size));
        path.quadTo(x, y, x + size, y);
        path.quadTo(x, y, x, y + size);
        path.quadTo(x, y, x - size, y);
        path.quadTo(x, y, x, y - size);
        painter.drawPath(path);
    }
}

void drawWarning(QPainter& painter)
{
    QPainterPath path;
    path.moveTo(32, 6);
    path.lineTo(60, 56);
    path.lineTo(4, 56);
    path.closeSubpath();
    painter.setBrush(kRed);
    painter.drawPath(path);
    painter.setPen(QPen(Qt::white, 6, Qt::SolidLine, Qt::RoundCap));
    painter.drawLine(32, 24, 32, 38);
    painter.drawPoint(32, 48);
}

} // namespace

QIcon PlaceIcons::of(const Place& place)
{
    static std::map<std::pair<int, int>, QIcon> icons;
    QIcon& icon = icons[{static_cast<int>(place.kind), place.category}];
    if (icon.isNull())
        icon = drawn([&](QPainter& painter) {
            const QColor colour = colourOf(place.category);
            if (place.kind == Place::Kind::Category)
                drawShelf(painter, colour);
            else if (place.kind == Place::Kind::Catalog)
                drawBook(painter, colour);
            else
                drawFolder(painter, colour);
        });
    return icon;
}

QIcon PlaceIcons::list(Place::Kind kind)
{
    if (kind == Place::Kind::News)
        return drawn(drawSparkle);
    if (kind == Place::Kind::Favourites)
        return drawn([](QPainter& painter) { Star::draw(painter, QRectF(2, 2, 60, 60), true); });
    return drawn(drawClock);
}

QIcon PlaceIcons::damaged()
{
    static const QIcon icon = drawn(drawWarning);
    return icon;
}

QIcon PlaceIcons::addition()
{
    return drawn([](QPainter& painter) {
        painter.setPen(QPen(kViolet, 8, Qt::SolidLine, Qt::RoundCap));
        painter.drawLine(32, 12, 32, 52);
        painter.drawLine(12, 32, 52, 32);
    });
}

void PlaceIcons::drawSign(QPainter& painter, const QRect& area, bool isWaiting)
{
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    if (isWaiting) { // an arrow down to a line
        painter.setPen(QPen(kOrange, 2, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
        const QPoint tip(area.center().x(), area.bottom() - 3);
        painter.drawLine(QPoint(tip.x(), area.top()), tip);
        painter.drawPolyline(QPolygon({tip + QPoint(-3, -3), tip, tip + QPoint(3, -3)}));
        painter.drawLine(area.bottomLeft(), area.bottomRight());
    } else {
        painter.setPen(Qt::NoPen);
        painter.setBrush(kGreen);
        painter.drawEllipse(area.adjusted(1, 1, -1, -1));
    }
    painter.restore();
}
