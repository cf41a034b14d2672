#include "apps/orv-library/service/SamplePicture.h"

#include <random>

#include <QBuffer>
#include <QImage>
#include <QPainter>

namespace {

QByteArray encoded(const QImage& image)
{
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, "PNG");
    return bytes;
}

QColor colour(std::mt19937& random, int lightness)
{
    return QColor::fromHsl(static_cast<int>(random() % 360), 90 + static_cast<int>(random() % 80), lightness);
}

void drawDoor(QPainter& painter, const QRect& frame)
{
    painter.drawRect(frame);
    painter.drawEllipse(QPoint(frame.right() - frame.width() / 5, frame.center().y()), 2, 2);
}

void drawWindow(QPainter& painter, const QRect& frame)
{
    painter.drawRect(frame);
    painter.drawLine(frame.center().x(), frame.top(), frame.center().x(), frame.bottom());
    painter.drawLine(frame.left(), frame.center().y(), frame.right(), frame.center().y());
}

void drawLamp(QPainter& painter, const QRect& frame)
{
    painter.drawPolygon(QPolygon({{frame.center().x(), frame.top()},
                                  {frame.right(), frame.center().y()},
                                  {frame.left(), frame.center().y()}}));
    painter.drawLine(frame.center().x(), frame.center().y(), frame.center().x(), frame.bottom());
}

void drawPlant(QPainter& painter, const QRect& frame)
{
    painter.drawEllipse(frame.adjusted(0, 0, 0, -frame.height() / 3));
    painter.drawRect(frame.center().x() - 2, frame.bottom() - frame.height() / 3, 4, frame.height() / 3);
}

void drawTable(QPainter& painter, const QRect& frame)
{
    painter.drawRect(frame.left(), frame.center().y() - 3, frame.width(), 6);
    painter.drawRect(frame.left() + 3, frame.center().y() + 3, 4, frame.height() / 2 - 4);
    painter.drawRect(frame.right() - 6, frame.center().y() + 3, 4, frame.height() / 2 - 4);
}

} // namespace

namespace SamplePicture {

QByteArray png(std::uint32_t seed, int side)
{
    static constexpr void (*kDrawings[])(QPainter&, const QRect&) = {drawDoor, drawWindow, drawLamp,
                                                                     drawPlant, drawTable};
    std::mt19937 random(seed);
    QImage image(side, side, QImage::Format_RGB32);
    image.fill(colour(random, 225));
    QPainter painter(&image);
    painter.setPen(QPen(colour(random, 70), 2));
    painter.setBrush(colour(random, 150));
    const int margin = side / 6 + static_cast<int>(random() % static_cast<unsigned>(side / 8));
    kDrawings[random() % 5](painter, QRect(margin, side / 8, side - 2 * margin, side - side / 4));
    painter.end();
    return encoded(image);
}

QByteArray texture(std::uint32_t seed, int side)
{
    std::mt19937 random(seed);
    QImage image(side, side, QImage::Format_RGB32);
    const QColor ground = colour(random, 160);
    const int tile = 8 + static_cast<int>(random() % 24);
    for (int y = 0; y < side; ++y)
        for (int x = 0; x < side; ++x) {
            const bool isJoint = x % tile == 0 || y % tile == 0;
            image.setPixel(x, y, ground.darker(isJoint ? 150 : 95 + static_cast<int>(random() % 11)).rgb());
        }
    return encoded(image);
}

} // namespace SamplePicture
