#include "apps/orv-browser/gallery/PictureStore.h"

#include <QCoreApplication>
#include <QImage>
#include <QPainter>
#include <QPixmap>
#include <QPointer>

#include "apps/orv-browser/models/Background.h"
#include "apps/orv-browser/models/CatalogDatabase.h"

namespace {

constexpr int kMostPictures = 4000;
constexpr int kSide = 48;

QString cacheKey(const fileString& database, long long item)
{
    return QString::fromLocal8Bit(database.toNativeString().c_str()) + QLatin1Char('\n') +
           QString::number(item);
}

QIcon plainPicture()
{
    QPixmap pixmap(kSide, kSide);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    painter.setPen(QPen(QColor(128, 128, 128, 160), 1, Qt::DashLine));
    painter.drawRoundedRect(4, 4, kSide - 9, kSide - 9, 6, 6);
    return QIcon(pixmap);
}

QImage readPicture(const fileString& database, long long item)
{
    try {
        return QImage::fromData(CatalogDatabase(database).details(item).picture);
    } catch (const std::exception&) {
        return {}; // a catalog that cannot be read has no pictures; its folder says why
    }
}

} // namespace

PictureStore::PictureStore(QObject* parent)
    : QObject(parent), mPlaceholder(plainPicture()), mIcons(kMostPictures)
{
    mPool.setMaxThreadCount(1);
}

PictureStore::~PictureStore()
{
    mPool.clear();
    mPool.waitForDone();
}

QIcon PictureStore::picture(const fileString& database, long long item)
{
    if (const QIcon* icon = mIcons.object(cacheKey(database, item)))
        return *icon;
    const Key key(database, item);
    if (mAsked.insert(key).second)
        Background::run(
            mPool, this, [database, item] { return readPicture(database, item); },
            [this, key](const QImage& image) { keep(key, image); }, ++mAskedSoFar);
    return mPlaceholder;
}

void PictureStore::keep(const Key& key, const QImage& image)
{
    mAsked.erase(key);
    const auto icon = image.isNull() ? mPlaceholder : QIcon(QPixmap::fromImage(image));
    mIcons.insert(cacheKey(key.first, key.second), new QIcon(icon));
    if (!image.isNull())
        Q_EMIT loaded(key.first, key.second);
}

void PictureStore::forget(const fileString& database)
{
    const QString prefix = cacheKey(database, 0).section(QLatin1Char('\n'), 0, 0) + QLatin1Char('\n');
    for (const QString& key : mIcons.keys())
        if (key.startsWith(prefix))
            mIcons.remove(key);
}
