#include "apps/orv-browser/gallery/ItemPicture.h"

#include <QImage>
#include <QModelIndex>
#include <QPainter>
#include <QPainterPath>
#include <QPalette>
#include <QPixmapCache>

#include "apps/orv-browser/gallery/GalleryModel.h"

namespace {

constexpr int kMostEnlarged = 2;

/// A scaled picture, which is cached, because scrolling paints it many times.
QPixmap scaled(const QImage& image, const QSize& size, double ratio)
{
    const QString key =
        QStringLiteral("orv-item-%1-%2-%3").arg(image.cacheKey()).arg(size.width()).arg(ratio);
    QPixmap pixmap;
    if (!QPixmapCache::find(key, &pixmap)) {
        pixmap =
            QPixmap::fromImage(image.scaled(size * ratio, Qt::IgnoreAspectRatio, Qt::SmoothTransformation));
        pixmap.setDevicePixelRatio(ratio);
        QPixmapCache::insert(key, pixmap);
    }
    return pixmap;
}

/// A frame with a mountain if the item has no picture, and an empty frame while it is loaded.
void paintPlaceholder(QPainter& painter, const QRect& area, const QPalette& palette, bool isComing)
{
    const int side = qMin(area.width(), area.height()) * 2 / 3;
    QRectF frame(0, 0, side, side * 0.8);
    frame.moveCenter(QRectF(area).center());
    QColor colour = palette.color(QPalette::Text);
    colour.setAlpha(isComing ? 40 : 80);
    painter.setPen(QPen(colour, qMax(1.0, side / 32.0), isComing ? Qt::DashLine : Qt::SolidLine));
    painter.setBrush(Qt::NoBrush);
    painter.drawRoundedRect(frame, side / 12.0, side / 12.0);
    if (isComing)
        return;
    QPainterPath hills;
    hills.moveTo(frame.left() + side * 0.1, frame.bottom() - side * 0.1);
    hills.lineTo(frame.left() + side * 0.35, frame.top() + side * 0.3);
    hills.lineTo(frame.left() + side * 0.55, frame.bottom() - side * 0.25);
    hills.lineTo(frame.left() + side * 0.7, frame.top() + side * 0.4);
    hills.lineTo(frame.right() - side * 0.1, frame.bottom() - side * 0.1);
    painter.drawPath(hills);
}

} // namespace

QSize ItemPicture::shownSize(const QSize& picture, const QSize& area)
{
    const QSize fitting = picture.scaled(area, Qt::KeepAspectRatio);
    return fitting.width() > picture.width() * kMostEnlarged ? picture * kMostEnlarged : fitting;
}

void ItemPicture::paint(QPainter& painter, const QRect& area, const QModelIndex& index,
                        const QPalette& palette)
{
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    const auto state = static_cast<PictureStore::State>(index.data(GalleryModel::kPictureStateRole).toInt());
    const auto image = index.data(GalleryModel::kPictureRole).value<QImage>();
    if (state != PictureStore::State::Here || image.isNull()) {
        paintPlaceholder(painter, area, palette, state == PictureStore::State::Waiting);
    } else {
        const QSize size = shownSize(image.size(), area.size()).expandedTo({1, 1});
        QRect place(QPoint(), size);
        place.moveCenter(area.center());
        painter.drawPixmap(place, scaled(image, size, painter.device()->devicePixelRatioF()));
    }
    painter.restore();
}
