#include "apps/orv-browser/models/LibraryNews.h"

#include <utility>

#include <QFile>
#include <QJsonArray>
#include <QJsonObject>

#include "OrvHost/history/CatalogNews.h"
#include "OrvHost/update/LastCheck.h"
#include "apps/orv-browser/models/Background.h"
#include "apps/orv-browser/models/UserLists.h"

using OrvHost::CatalogPlaces::installed;

/// The notes below the root.
struct LibraryNews::Notes
{
    NewItems items;
    std::set<fileString> waiting;
    QDateTime lastCheck;
    std::int64_t lastRun = 0;
    bool isLibraryEmpty = true;
};

namespace {

NewItems itemsSince(const fileString& root, std::int64_t run)
{
    NewItems items;
    for (const auto& [place, changes] : OrvHost::CatalogNews::since(root, run)) {
        auto& catalog = items.catalogs[place.path()];
        for (const auto& item : changes.added)
            catalog.emplace(item.id, NewItems::Kind::Added);
        for (const auto& item : changes.changed)
            catalog.emplace(item.id, NewItems::Kind::Changed);
        items.gone += static_cast<int>(changes.gone.size());
    }
    return items;
}

std::set<fileString> waitingCatalogs(const OrvHost::LastCheck& check)
{
    std::set<fileString> waiting;
    for (const QJsonValue entry : check.document["catalogs"].toArray()) {
        const QJsonObject catalog = entry.toObject();
        const OrvHost::CatalogPlace place = OrvHost::CatalogPlaces::ofKey(
            (catalog["category"].toString() + QLatin1Char('/') + catalog["name"].toString()).toStdString());
        if (catalog["state"] == QLatin1String("new") && !place.name.empty())
            waiting.insert(place.path());
    }
    return waiting;
}

/// Where the news are gone that the user saw, runs are numbered anew, and all that there are came since.
std::int64_t seenOf(std::int64_t seen, std::int64_t lastRun)
{
    return seen <= lastRun ? seen : 0;
}

} // namespace

LibraryNews::LibraryNews(fileString root, UserLists& lists, QObject* parent)
    : QObject(parent), mRoot(std::move(root)), mLists(lists), mItems(std::make_shared<const NewItems>())
{
    mPool.setMaxThreadCount(1);
    // Another program may check or update at any time. Files there are replaced, which changes the folder.
    mWatcher.addPath(QFile::decodeName(mRoot.toNativeString().c_str()));
    connect(&mWatcher, &QFileSystemWatcher::directoryChanged, this, &LibraryNews::refresh);
}

LibraryNews::~LibraryNews()
{
    mPool.clear();
    mPool.waitForDone();
}

void LibraryNews::refresh()
{
    mIsStale = mIsReading;
    if (mIsReading)
        return;
    mIsReading = true;
    Background::run(
        mPool, this,
        [root = mRoot, seen = mLists.seenRun()] {
            Notes notes;
            notes.lastRun =
                OrvHost::CatalogNews::lastRun(root); // first: what comes meanwhile is not seen yet
            if (seen)
                notes.items = itemsSince(root, seenOf(*seen, notes.lastRun));
            if (const auto check = OrvHost::LastCheck::load(root)) {
                notes.waiting = waitingCatalogs(*check);
                notes.lastCheck = check->time;
            }
            notes.isLibraryEmpty = installed().empty();
            return notes;
        },
        [this](const Notes& notes) { take(notes); });
}

void LibraryNews::take(const Notes& notes)
{
    mIsReading = false;
    mLastRun = notes.lastRun;
    // The first fetch of all is noted when it is over; what it has brought until then is not new either.
    if (!mLists.seenRun() && !notes.isLibraryEmpty && notes.lastRun > 0)
        mLists.setSeenRun(mLastRun);
    else if (mLists.seenRun() && *mLists.seenRun() > mLastRun)
        mLists.setSeenRun(seenOf(*mLists.seenRun(), mLastRun));
    const bool isSame = *mItems == notes.items && mWaiting == notes.waiting && mLastCheck == notes.lastCheck;
    mWaiting = notes.waiting;
    mLastCheck = notes.lastCheck;
    if (!isSame) {
        mItems = std::make_shared<const NewItems>(notes.items);
        Q_EMIT changed();
    }
    if (mIsStale)
        refresh();
}

void LibraryNews::setSeen(std::int64_t run)
{
    mLists.setSeenRun(run);
    refresh();
}
