#include "apps/orv-browser/models/UserLists.h"

#include <algorithm>

#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>

#include "OrvHost/TextFile.h"
#include "apps/orv-browser/models/ItemIndex.h"
#include "apps/orv-browser/models/Reasons.h"

namespace {

constexpr std::size_t kMostRecent = 60;
constexpr int kSaveMilliseconds = 1000;

fileString fileIn(const fileString& root)
{
    return root / fileString("browser-lists.json");
}

QString textOf(const fileString& path)
{
    return QFile::decodeName(path.toNativeString().c_str());
}

/// The item with this name; -1 when there is none.
int itemNamed(const CatalogContent& content, const QString& name)
{
    const auto found =
        std::find_if(content.items().begin(), content.items().end(),
                     [&](const CatalogContent::Item& item) { return content.itemName(item) == name; });
    return found == content.items().end() ? -1 : static_cast<int>(found - content.items().begin());
}

} // namespace

UserLists::UserLists(fileString root, QObject* parent) : QObject(parent), mRoot(std::move(root))
{
    mSaveLater.setSingleShot(true);
    mSaveLater.setInterval(kSaveMilliseconds);
    connect(&mSaveLater, &QTimer::timeout, this, &UserLists::save);
    QFile file(textOf(fileIn(mRoot)));
    if (!file.open(QIODevice::ReadOnly))
        return;
    const QJsonObject document = QJsonDocument::fromJson(file.readAll()).object();
    mFavourites = read(document["favourites"].toArray());
    mRecent = read(document["recent"].toArray());
    if (document["seenRun"].isDouble())
        mSeenRun = static_cast<std::int64_t>(document["seenRun"].toDouble());
}

UserLists::~UserLists()
{
    if (mSaveLater.isActive())
        save();
}

UserLists::Entries UserLists::read(const QJsonArray& list) const
{
    Entries entries;
    for (const auto& value : list) {
        const QJsonObject object = value.toObject();
        const QString catalog = object["catalog"].toString();
        if (catalog.isEmpty() || !object["item"].isDouble())
            continue;
        const fileString path(QFile::encodeName(catalog).toStdString());
        entries.push_back({{catalog.startsWith(QLatin1Char('/')) ? path : mRoot / path,
                            static_cast<long long>(object["item"].toDouble())},
                           object["name"].toString(),
                           false});
    }
    return entries;
}

/// Catalogs below the root are named from there, so that the lists hold when the root is moved.
QJsonArray UserLists::written(const Entries& entries) const
{
    const QString root = textOf(mRoot / fileString());
    QJsonArray list;
    for (const Entry& entry : entries) {
        const QString path = textOf(entry.key.first);
        list.append(QJsonObject{{"catalog", path.startsWith(root) ? path.mid(root.size()) : path},
                                {"item", static_cast<double>(entry.key.second)},
                                {"name", entry.name}});
    }
    return list;
}

void UserLists::save()
{
    mSaveLater.stop();
    const QJsonObject document{
        {"favourites", written(mFavourites)},
        {"recent", written(mRecent)},
        {"seenRun", mSeenRun ? static_cast<double>(*mSeenRun) : QJsonValue(QJsonValue::Undefined)},
    };
    try {
        OrvHost::TextFile::write(fileIn(mRoot), QJsonDocument(document).toJson().toStdString());
        mProblem.clear();
    } catch (const std::exception& error) {
        mProblem = Reasons::text(error.what());
    }
}

std::vector<UserLists::Key> UserLists::installed(const Entries& entries)
{
    std::vector<Key> keys;
    for (const Entry& entry : entries)
        if (entry.isInstalled)
            keys.push_back(entry.key);
    return keys;
}

std::vector<UserLists::Key> UserLists::favourites() const
{
    std::vector<Key> keys = installed(mFavourites);
    std::sort(keys.begin(), keys.end());
    return keys;
}

bool UserLists::isFavourite(const Key& key) const
{
    return std::any_of(mFavourites.begin(), mFavourites.end(),
                       [&](const Entry& entry) { return entry.isInstalled && entry.key == key; });
}

void UserLists::setFavourites(const std::vector<Key>& keys, const std::vector<QString>& names,
                              bool areFavourites)
{
    for (std::size_t i = 0; i < keys.size(); ++i) {
        const auto isThis = [&](const Entry& entry) { return entry.isInstalled && entry.key == keys[i]; };
        mFavourites.erase(std::remove_if(mFavourites.begin(), mFavourites.end(), isThis), mFavourites.end());
        if (areFavourites)
            mFavourites.push_back({keys[i], names[i]});
    }
    save();
    Q_EMIT favouritesChanged();
}

std::vector<UserLists::Key> UserLists::recent() const
{
    return installed(mRecent);
}

void UserLists::addRecent(const Key& key, const QString& name)
{
    if (!mRecent.empty() && mRecent.front().key == key)
        return;
    mRecent.erase(
        std::remove_if(mRecent.begin(), mRecent.end(), [&](const Entry& entry) { return entry.key == key; }),
        mRecent.end());
    mRecent.insert(mRecent.begin(), {key, name});
    mRecent.resize(std::min(mRecent.size(), kMostRecent));
    mSaveLater.start(); // whoever walks through a list must not wait for the disk at each step
    Q_EMIT recentChanged();
}

void UserLists::moveCatalog(const fileString& from, const fileString& to)
{
    for (Entries* const entries : {&mFavourites, &mRecent})
        for (Entry& entry : *entries)
            if (entry.key.first == from)
                entry.key.first = to;
    save();
}

void UserLists::renameItem(const Key& key, const QString& name)
{
    for (Entries* const entries : {&mFavourites, &mRecent})
        for (Entry& entry : *entries)
            if (entry.key == key)
                entry.name = name;
    save();
}

void UserLists::setSeenRun(std::int64_t run)
{
    mSeenRun = run;
    save();
}

bool UserLists::follow(Entries& entries, const ItemIndex& index)
{
    bool isChanged = false;
    for (Entry& entry : entries) {
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
    if (follow(mFavourites, index))
        Q_EMIT favouritesChanged();
    if (follow(mRecent, index))
        Q_EMIT recentChanged();
}
