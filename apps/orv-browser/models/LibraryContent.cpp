#include "apps/orv-browser/models/LibraryContent.h"

#include <algorithm>
#include <utility>

#include <QDir>
#include <QFile>

#include "OrvLibrary/UI/TreeData.h"
#include "OrvLibrary/host/PathUtils.h"
#include "apps/orv-browser/models/Background.h"
#include "apps/orv-browser/models/FileStamp.h"

namespace {

std::vector<LibraryContent::Catalog> installedCatalogs()
{
    std::vector<LibraryContent::Catalog> catalogs;
    for (int category = 0; category < LibraryContent::kCategories; ++category) {
        const fileString folder = LibraryContent::folderOf(category);
        const QDir dir(QFile::decodeName(folder.toNativeString().c_str()));
        for (const QString& name : dir.entryList({QStringLiteral("*.orvlib")}, QDir::Files))
            catalogs.push_back({category, folder + fileString(QFile::encodeName(name).toStdString())});
    }
    for (LibraryContent::Catalog& catalog : catalogs)
        catalog.stamp = FileStamp::of(catalog.database);
    std::stable_sort(catalogs.begin(), catalogs.end(), [](const auto& left, const auto& right) {
        return left.category != right.category
                   ? left.category < right.category
                   : Library::TreeData::treeOrderComparatorStatic(false, false,
                                                                  left.database.stem().toNativeString(),
                                                                  right.database.stem().toNativeString()) < 0;
    });
    return catalogs;
}

/// The contents in the order of the catalogs: those of the former index where they are still good, and the
/// others read anew.
std::shared_ptr<const ItemIndex> indexOf(const std::vector<LibraryContent::Catalog>& catalogs,
                                         const ItemIndex& former, const std::set<fileString>& unread)
{
    ItemIndex::Catalogs contents;
    for (const LibraryContent::Catalog& catalog : catalogs) {
        std::shared_ptr<const CatalogContent> content =
            unread.count(catalog.database) == 0 ? former.find(catalog.database) : nullptr;
        if (!content)
            content = CatalogContent::read(catalog.category, catalog.database);
        contents.push_back(std::move(content));
    }
    return std::make_shared<const ItemIndex>(std::move(contents));
}

bool isSame(const LibraryContent::Catalog& left, const LibraryContent::Catalog& right)
{
    return left.category == right.category && left.database == right.database;
}

} // namespace

LibraryContent::LibraryContent(QObject* parent) : QObject(parent), mIndex(std::make_shared<const ItemIndex>())
{
    mPool.setMaxThreadCount(1);
}

LibraryContent::~LibraryContent()
{
    mPool.clear();
    mPool.waitForDone();
}

fileString LibraryContent::folderOf(int category)
{
    const PathUtils& paths = PathUtils::getObject();
    switch (category) {
    case 0:
        return paths.getCoreLibraryDatabasePath();
    case 1:
        return paths.getBonusLibraryDatabasePath();
    case kManufacturerCategory:
        return paths.getManufacturerLibraryPath();
    default:
        return paths.getUserLibraryDatabasePath();
    }
}

void LibraryContent::refresh()
{
    std::vector<Catalog> found = installedCatalogs();
    const bool areSame = std::equal(found.begin(), found.end(), mCatalogs.begin(), mCatalogs.end(), isSame);
    const bool haveChanged = noteChanges(found);
    mCatalogs = std::move(found);
    if (!areSame)
        Q_EMIT catalogsChanged();
    if (!areSame || haveChanged)
        read();
}

/// @return whether any catalog is to be read
bool LibraryContent::noteChanges(const std::vector<Catalog>& found)
{
    bool haveChanged = false;
    for (const Catalog& catalog : found) {
        const auto known = std::find_if(mCatalogs.begin(), mCatalogs.end(),
                                        [&](const Catalog& one) { return isSame(one, catalog); });
        if (known != mCatalogs.end() && known->stamp == catalog.stamp)
            continue;
        haveChanged = true;
        mUnread.insert(catalog.database);
        if (known != mCatalogs.end())
            Q_EMIT catalogChanged(catalog.database);
    }
    return haveChanged;
}

void LibraryContent::reload(const fileString& database)
{
    mUnread.insert(database);
    refresh();
    read();
}

void LibraryContent::read()
{
    if (mIsReading)
        return; // what has changed meanwhile is read afterwards
    mIsReading = true;
    Background::run(
        mPool, this,
        [catalogs = mCatalogs, former = mIndex, unread = std::exchange(mUnread, {})] {
            return indexOf(catalogs, *former, unread);
        },
        [this](std::shared_ptr<const ItemIndex> index) { take(std::move(index)); });
}

void LibraryContent::take(std::shared_ptr<const ItemIndex> index)
{
    mIsReading = false;
    mIndex = std::move(index);
    const auto& held = mIndex->catalogs();
    const bool isCurrent = mUnread.empty() && held.size() == mCatalogs.size() &&
                           std::equal(held.begin(), held.end(), mCatalogs.begin(),
                                      [](const auto& content, const Catalog& catalog) {
                                          return content->database() == catalog.database;
                                      });
    Q_EMIT indexChanged();
    if (!isCurrent)
        read();
}
