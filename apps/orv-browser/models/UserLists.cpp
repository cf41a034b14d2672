// How it works: an entry is the file of a catalog, the id of an item and its name, because ids may stand for
// other items after an update. `followIndex` looks each one up by its name; an entry that is not found stays
// in the list, marked as not installed, until its catalog comes back. Favourites are saved at once, recent
// items a second later, so that looking through many items writes one file.
#include "apps/orv-browser/models/UserLists.h"

#include <algorithm>

#include "apps/orv-browser/models/ItemIndex.h"
#include "apps/orv-browser/models/Reasons.h"

namespace {

constexpr std::size_t kMostRecent = 60;
constexpr int kSaveMilliseconds = 1000;

/// The item with this name; -1 when there is none.
int itemNamed(const CatalogContent& content, const QString& name)
{
    const auto found =
        std::find_if(content.items().begin(), content.items().end(),
                     [&](const CatalogContent::Item& item) { return content.itemName(item) == name; });
    return found == content.items().end() ? -1 : static_cast<int>(found - content.items().begin());
}

} // namespace

UserLists::UserLists(const fileString& root, QObject* parent)
    : QObject(parent), mFile(root), mLists(mFile.load())
{
    mSaveLater.setSingleShot(true);
    mSaveLater.setInterval(kSaveMilliseconds);
    connect(&mSaveLater, &QTimer::timeout, this, &UserLists::save);
}

UserLists::~UserLists()
{
    if (mSaveLater.isActive())
        save();
}

void UserLists::save()
{
    mSaveLater.stop();
    try {
        mFile.save(mLists);
    } catch (const std::exception& error) {
        Q_EMIT notSaved(Reasons::text(error.what()));
    }
}

std::vector<UserLists::Key> UserLists::installed(const Entries& entries)
{
    std::vector<Key> keys;
    for (const ListFile::Entry& entry : entries)
        if (entry.isInstalled)
            keys.push_back(entry.key);
    return keys;
}

std::vector<UserLists::Key> UserLists::favourites() const
{
    std::vector<Key> keys = installed(mLists.favourites);
    std::sort(keys.begin(), keys.end());
    return keys;
}

bool UserLists::isFavourite(const Key& key) const
{
    return std::any_of(mLists.favourites.begin(), mLists.favourites.end(),
                       [&](const ListFile::Entry& entry) { return entry.isInstalled && entry.key == key; });
}

void UserLists::setFavourites(const std::vector<Key>& keys, const std::vector<QString>& names,
                              bool areFavourites)
{
    for (std::size_t i = 0; i < keys.size(); ++i) {
        // One that another window has added counts as installed when the catalogs are read the next time.
        const auto isThis = [&](const ListFile::Entry& entry) {
            return entry.key == keys[i] && (entry.isInstalled || entry.name == names[i]);
        };
        mLists.favourites.erase(std::remove_if(mLists.favourites.begin(), mLists.favourites.end(), isThis),
                                mLists.favourites.end());
        if (areFavourites)
            mLists.favourites.push_back({keys[i], names[i]});
    }
    save();
    Q_EMIT favouritesChanged();
}

std::vector<UserLists::Key> UserLists::recent() const
{
    return installed(mLists.recent);
}

void UserLists::addRecent(const Key& key, const QString& name)
{
    if (!mLists.recent.empty() && mLists.recent.front().key == key)
        return;
    mLists.recent.erase(std::remove_if(mLists.recent.begin(), mLists.recent.end(),
                                       [&](const ListFile::Entry& entry) { return entry.key == key; }),
                        mLists.recent.end());
    mLists.recent.insert(mLists.recent.begin(), {key, name});
    mLists.recent.resize(std::min(mLists.recent.size(), kMostRecent));
    mSaveLater.start(); // whoever walks through a list must not wait for the disk at each step
    Q_EMIT recentChanged();
}

void UserLists::moveCatalog(const fileString& from, const fileString& to)
{
    for (Entries* const entries : {&mLists.favourites, &mLists.recent})
        for (ListFile::Entry& entry : *entries)
            if (entry.key.first == from)
                entry.key.first = to;
    save();
}

void UserLists::renameItem(const Key& key, const QString& name)
{
    for (Entries* const entries : {&mLists.favourites, &mLists.recent})
        for (ListFile::Entry& entry : *entries)
            if (entry.key == key)
                entry.name = name;
    save();
}

void UserLists::setSeenRun(std::int64_t run)
{
    mLists.seenRun = run;
    save();
}

bool UserLists::follow(Entries& entries, const ItemIndex& index)
{
    bool isChanged = false;
    for (ListFile::Entry& entry : entries) {
        const auto content = index.find(entry.key.first);
        int item = content ? content->itemAt(entry.key.second) : -1;
        if (item >= 0 && content->itemName(content->items()[static_cast<std::size_t>(item)]) != entry.name)
            item = -1;
        if (item < 0 && content)
            item = itemNamed(*content, entry.name);
        const bool isInstalled = item >= 0;
        const long long id =
            isInstalled ? content->items()[static_cast<std::size_t>(item)].id : entry.key.second;
        isChanged = isChanged || isInstalled != entry.isInstalled || id != entry.key.second;
        entry.isInstalled = isInstalled;
        entry.key.second = id;
    }
    return isChanged;
}

void UserLists::followIndex(const ItemIndex& index)
{
    if (follow(mLists.favourites, index))
        Q_EMIT favouritesChanged();
    if (follow(mLists.recent, index))
        Q_EMIT recentChanged();
}
