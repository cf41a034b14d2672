#include "apps/orv-browser/places/MakerLogos.h"

#include <utility>

#include <QFile>
#include <QImage>
#include <QImageReader>
#include <QPainter>
#include <QPixmap>

#include "OrvLibrary/Manufacturer/ManufacturerManager.h"
#include "OrvLibrary/host/FileUtils.h"
#include "OrvLibrary/host/PathUtils.h"
#include "apps/orv-browser/gallery/ItemPicture.h"
#include "apps/orv-browser/models/Background.h"

namespace {

constexpr int kSide = 64; // pixels; enough for a row at three times the usual density
constexpr int kRoom = 58;
constexpr int kMostSide = 512; // a larger logo is scaled down to this
constexpr int kCorner = 8;
constexpr std::int64_t kMostBytes = 16 * 1024 * 1024;
constexpr int kMostPixels = 8192; // on a side

/// The file of a maker's logo; empty when the records name none.
fileString fileOf(std::int32_t maker)
{
    const ManufacturerManager* manager = ManufacturerManager::getManufacturerManager();
    if (!manager->manufacturerExists(maker))
        return {};
    const fileString name(manager->getManufacturer(maker).getManufacturerLogoName());
    return name.empty() ? fileString() : PathUtils::getObject().getManufacturerDataPath() / name;
}

/// The picture in a file; null when it holds none, or one that is far too large for a logo.
QImage logoIn(const fileString& file)
{
    QImageReader reader(QFile::decodeName(file.toNativeString().c_str()));
    const QSize stated = reader.size();
    if (FileUtils::fileSize(file) > kMostBytes || stated.width() > kMostPixels ||
        stated.height() > kMostPixels)
        return {};
    const QImage logo = reader.read();
    const bool isLarge = logo.width() > kMostSide || logo.height() > kMostSide;
    return isLarge ? logo.scaled(kMostSide, kMostSide, Qt::KeepAspectRatio, Qt::SmoothTransformation) : logo;
}

/// The logo on a white plate, because logos are made for white; null for a null one.
QImage plateOf(const QImage& logo)
{
    if (logo.isNull())
        return {};
    QImage plate(kSide, kSide, QImage::Format_ARGB32_Premultiplied);
    plate.fill(Qt::transparent);
    QPainter painter(&plate);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    painter.setPen(QPen(QColor(0, 0, 0, 60), 1));
    painter.setBrush(Qt::white);
    painter.drawRoundedRect(QRectF(0.5, 0.5, kSide - 1, kSide - 1), kCorner, kCorner);
    const QSize size = ItemPicture::shownSize(logo.size(), {kRoom, kRoom}).expandedTo({1, 1});
    QRect place(QPoint(), size);
    place.moveCenter(QRect(0, 0, kSide, kSide).center());
    painter.drawImage(place, logo.scaled(size, Qt::IgnoreAspectRatio, Qt::SmoothTransformation));
    return plate;
}

} // namespace

MakerLogos::MakerLogos(QObject* parent) : QObject(parent)
{
    mPool.setMaxThreadCount(1);
}

MakerLogos::~MakerLogos()
{
    mPool.clear();
    mPool.waitForDone();
}

QIcon MakerLogos::icon(std::int32_t maker)
{
    return logo(maker).icon;
}

QImage MakerLogos::image(std::int32_t maker)
{
    return logo(maker).image;
}

const MakerLogos::Logo& MakerLogos::logo(std::int32_t maker)
{
    const auto [known, isFirst] = mLogos.try_emplace(maker);
    const fileString file = isFirst ? fileOf(maker) : fileString();
    if (!file.empty())
        read(maker, file);
    return known->second;
}

void MakerLogos::read(std::int32_t maker, const fileString& file)
{
    Background::run(
        mPool, this,
        [file] {
            const QImage image = logoIn(file);
            return std::pair(image, plateOf(image));
        },
        [this, maker, version = mVersion](const std::pair<QImage, QImage>& come) {
            const auto& [image, plate] = come;
            if (image.isNull() || version != mVersion)
                return;
            mLogos[maker] = {QIcon(QPixmap::fromImage(plate)), image};
            Q_EMIT changed();
        });
}

void MakerLogos::forget()
{
    ++mVersion;
    mLogos.clear();
    Q_EMIT changed();
}
