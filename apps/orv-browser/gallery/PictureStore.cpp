#include "apps/orv-browser/gallery/PictureStore.h"

#include <map>
#include <memory>

#include "apps/orv-browser/models/Background.h"
#include "apps/orv-browser/models/CatalogDatabase.h"

namespace {

constexpr int kMostKilobytes = 96 * 1024; // size of all pictures that are kept
constexpr int kMostSide = 512;            // larger ones are scaled down to this
constexpr std::size_t kMostWanted = 400;  // requests for items that were scrolled past are dropped
constexpr std::size_t kPortion = 24;

QImage decoded(const QByteArray& bytes)
{
    const QImage image = QImage::fromData(bytes);
    const bool isLarge = image.width() > kMostSide || image.height() > kMostSide;
    return isLarge ? image.scaled(kMostSide, kMostSide, Qt::KeepAspectRatio, Qt::SmoothTransformation)
                   : image;
}

} // namespace

PictureStore::PictureStore(QObject* parent) : QObject(parent), mKept(kMostKilobytes)
{
    mPool.setMaxThreadCount(1);
}

PictureStore::~PictureStore()
{
    mPool.clear();
    mPool.waitForDone();
}

QString PictureStore::cacheKey(const Key& key)
{
    return QString::fromLocal8Bit(key.first.toNativeString().c_str()) + QLatin1Char('\n') +
           QString::number(key.second);
}

PictureStore::State PictureStore::ask(const fileString& database, long long item)
{
    const Key key(database, item);
    if (const Entry* entry = mKept.object(cacheKey(key)))
        return entry->state;
    if (mAsked.insert(key).second) {
        mWanted.push_back(key);
        if (mWanted.size() > kMostWanted) {
            mAsked.erase(mWanted.front());
            mWanted.pop_front();
        }
        load();
    }
    return State::Waiting;
}

QImage PictureStore::picture(const fileString& database, long long item) const
{
    const Entry* entry = mKept.object(cacheKey({database, item}));
    return entry ? entry->image : QImage();
}

void PictureStore::load()
{
    if (mIsLoading || mWanted.empty())
        return;
    std::vector<Loaded> wanted;
    for (; !mWanted.empty() && wanted.size() < kPortion; mWanted.pop_back())
        wanted.push_back({mWanted.back(), mVersions[mWanted.back().first], {}});
    mIsLoading = true;
    Background::run(
        mPool, this, [wanted] { return read(wanted); },
        [this](const std::vector<Loaded>& pictures) { keep(pictures); });
}

std::vector<PictureStore::Loaded> PictureStore::read(const std::vector<Loaded>& wanted)
{
    std::map<fileString, std::unique_ptr<CatalogDatabase>> open;
    std::vector<Loaded> pictures = wanted;
    for (Loaded& one : pictures) {
        try {
            std::unique_ptr<CatalogDatabase>& database = open[one.key.first];
            if (!database)
                database = std::make_unique<CatalogDatabase>(one.key.first);
            const QByteArray bytes = database->details(one.key.second).picture;
            one.entry.image = decoded(bytes);
            one.entry.state = !one.entry.image.isNull() ? State::Here
                              : bytes.isEmpty()         ? State::Missing
                                                        : State::Broken;
        } catch (const std::exception&) {
            one.entry.state = State::Missing; // the place of the catalog shows why it cannot be read
        }
    }
    return pictures;
}

void PictureStore::keep(const std::vector<Loaded>& pictures)
{
    mIsLoading = false;
    for (const Loaded& one : pictures) {
        mAsked.erase(one.key);
        if (one.version == mVersions[one.key.first]) // otherwise the catalog was replaced while it was read
            mKept.insert(cacheKey(one.key), new Entry(one.entry),
                         1 + static_cast<int>(one.entry.image.sizeInBytes() / 1024));
    }
    Q_EMIT loaded();
    load();
}

void PictureStore::forget(const fileString& database)
{
    ++mVersions[database];
    const QString prefix = cacheKey({database, 0}).section(QLatin1Char('\n'), 0, 0) + QLatin1Char('\n');
    for (const QString& key : mKept.keys())
        if (key.startsWith(prefix))
            mKept.remove(key);
}
