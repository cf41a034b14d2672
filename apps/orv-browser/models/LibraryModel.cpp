#include "apps/orv-browser/models/LibraryModel.h"

#include <algorithm>
#include <map>

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QPersistentModelIndex>
#include <QTimer>

#include "OrvLibrary/UI/TreeCatalogData.h"
#include "OrvLibrary/UI/TreeFolderData.h"
#include "OrvLibrary/host/PathUtils.h"
#include "apps/orv-browser/gallery/PictureStore.h"
#include "apps/orv-browser/models/Background.h"
#include "apps/orv-browser/models/CatalogRows.h"

using Library::LibraryCategoryData;
using Library::TreeData;
using Library::TreeFolderData;

namespace {

constexpr int kRowHeight = 28;    // pixels; room for a picture
constexpr int kPortion = 2000;    // rows that come or go at once
constexpr int kMostFillStep = 16; // milliseconds that are filled with rows before events are handled

/// Where the reading of a node's children stands; kept in the node.
constexpr int kStateRole = Qt::UserRole + 1;
/// The number of the last reading of a node; one that was begun before ends without a trace.
constexpr int kReadingRole = Qt::UserRole + 2;
enum State
{
    kUnread,
    kReading,
    kRead,
    kFailed // a row says why
};

State stateOf(const QStandardItem& item)
{
    return static_cast<State>(item.data(kStateRole).toInt());
}

fileString folderOf(Library::LibraryCategory category)
{
    const PathUtils& paths = PathUtils::getObject();
    switch (category) {
    case Library::kCoreLibrary:
        return paths.getCoreLibraryDatabasePath();
    case Library::kBonusLibrary:
        return paths.getBonusLibraryDatabasePath();
    case Library::kManufacturerLibrary:
        return paths.getManufacturerLibraryPath();
    default:
        return paths.getUserLibraryDatabasePath();
    }
}

std::vector<fileString> catalogsIn(const fileString& folder)
{
    std::vector<fileString> catalogs;
    const QDir dir(QFile::decodeName(folder.toNativeString().c_str()));
    for (const QString& name : dir.entryList({QStringLiteral("*.orvlib")}, QDir::Files))
        catalogs.push_back(folder + fileString(QFile::encodeName(name).toStdString()));
    return catalogs;
}

/// Removes all rows below a node. An item that leaves a model looks for its row from the middle of its parent
/// outward, which takes minutes for some 100,000 siblings unless they leave from the middle.
void removeChildren(QStandardItem& parent)
{
    for (int row = 0; row < parent.rowCount(); ++row)
        if (parent.child(row)->hasChildren())
            removeChildren(*parent.child(row));
    while (parent.rowCount() > 0) {
        const int count = std::min(parent.rowCount(), kPortion);
        parent.removeRows((parent.rowCount() - count) / 2, count);
    }
}

} // namespace

LibraryModel::LibraryModel(QObject* parent) : QStandardItemModel(parent), mPictures(new PictureStore(this))
{
    mPool.setMaxThreadCount(1);
    const std::pair<Library::LibraryCategory, QString> categories[] = {
        {Library::kCoreLibrary, tr("Core")},
        {Library::kBonusLibrary, tr("Bonus")},
        {Library::kManufacturerLibrary, tr("Manufacturers")},
        {kUserLibrary, tr("My libraries")},
    };
    for (const auto& [category, name] : categories) {
        auto* node = new LibraryCategoryData(category, category, folderOf(category));
        node->setItemName(name.toStdString());
        node->setData(kRead, kStateRole);
        appendRow(node);
    }
    connect(mPictures, &PictureStore::loaded, this, &LibraryModel::pictureLoaded);
}

LibraryModel::~LibraryModel()
{
    mPool.clear();
    mPool.waitForDone();
    for (int row = 0; row < rowCount(); ++row)
        removeChildren(*item(row));
}

void LibraryModel::refresh()
{
    for (int row = 0; row < rowCount(); ++row)
        refreshCategory(*item(row), node(index(row, 0))->getDatabasePath());
}

void LibraryModel::refreshCategory(QStandardItem& category, const fileString& folder)
{
    std::map<fileString, int> known;
    const std::vector<fileString> catalogs = catalogsIn(folder);
    for (int row = category.rowCount() - 1; row >= 0; --row) {
        const fileString path = dynamic_cast<TreeData&>(*category.child(row)).getDatabasePath();
        if (std::find(catalogs.begin(), catalogs.end(), path) == catalogs.end()) {
            removeChildren(*category.child(row));
            category.removeRow(row);
        } else
            known[path] = row;
    }
    bool isChanged = false;
    for (const fileString& path : catalogs)
        if (known.count(path) == 0) {
            category.appendRow(new TreeFolderData(-1, path, path.stem().toNativeString()));
            isChanged = true;
        }
    if (isChanged)
        category.sortChildren(0);
}

void LibraryModel::reload(const fileString& database)
{
    mPictures->forget(database);
    refresh();
    forEachCatalog([&](const QModelIndex&, TreeData& catalog) {
        if (catalog.getDatabasePath() != database || stateOf(catalog) == kUnread)
            return;
        catalog.setData(kUnread, kStateRole);
        fetchMore(catalog.index());
    });
}

int LibraryModel::catalogCount() const
{
    int count = 0;
    for (int row = 0; row < rowCount(); ++row)
        count += item(row)->rowCount();
    return count;
}

void LibraryModel::forEachCatalog(const std::function<void(const QModelIndex&, TreeData&)>& call)
{
    for (int row = 0; row < rowCount(); ++row)
        for (int child = 0; child < item(row)->rowCount(); ++child)
            call(index(row, 0), dynamic_cast<TreeData&>(*item(row)->child(child)));
}

TreeData* LibraryModel::node(const QModelIndex& index) const
{
    return dynamic_cast<TreeData*>(itemFromIndex(index));
}

bool LibraryModel::isRead(const QModelIndex& parent) const
{
    const TreeData* parentNode = node(parent);
    return !parentNode || parentNode->isLeaf() || stateOf(*parentNode) >= kRead;
}

void LibraryModel::retry(const QModelIndex& parent)
{
    TreeData* parentNode = node(parent);
    if (parentNode && stateOf(*parentNode) == kFailed)
        parentNode->setData(kUnread, kStateRole);
}

bool LibraryModel::hasChildren(const QModelIndex& parent) const
{
    const TreeData* parentNode = node(parent);
    if (!parentNode)
        return !parent.isValid();
    if (parentNode->isLeaf())
        return false;
    return stateOf(*parentNode) < kRead || parentNode->rowCount() > 0;
}

bool LibraryModel::canFetchMore(const QModelIndex& parent) const
{
    const TreeData* parentNode = node(parent);
    return parentNode && !parentNode->isLeaf() && stateOf(*parentNode) == kUnread;
}

void LibraryModel::fetchMore(const QModelIndex& parent)
{
    if (!canFetchMore(parent))
        return;
    TreeData* parentNode = node(parent);
    const int reading = ++mReadings;
    parentNode->setData(kReading, kStateRole);
    parentNode->setData(reading, kReadingRole);
    const fileString database = parentNode->getDatabasePath();
    const long long folder = parentNode->getId();
    const QPersistentModelIndex place(parent);
    Background::run(
        mPool, this, [database, folder] { return CatalogRows::read(database, folder); },
        [this, place, reading](const std::shared_ptr<CatalogRows>& rows) {
            if (!place.isValid() || place.data(kReadingRole).toInt() != reading)
                return; // the catalog has left meanwhile, or is read again
            QStandardItem* filledNode = itemFromIndex(place);
            removeChildren(*filledNode);
            fill(filledNode, rows);
        });
}

// The view lays out all rows anew after each step, so steps are as long as the window can do without events.
void LibraryModel::fill(QStandardItem* parent, const std::shared_ptr<CatalogRows>& rows)
{
    QElapsedTimer timer;
    timer.start();
    do
        parent->appendRows(rows->take(kPortion));
    while (!rows->isEmpty() && timer.elapsed() < kMostFillStep);

    const QPersistentModelIndex place(parent->index());
    if (!rows->isEmpty()) {
        const int reading = parent->data(kReadingRole).toInt();
        QTimer::singleShot(0, this, [this, place, rows, reading] {
            if (place.isValid() && place.data(kReadingRole).toInt() == reading)
                fill(itemFromIndex(place), rows);
        });
        return;
    }
    const bool isFailed = !rows->problem().isEmpty();
    if (isFailed)
        showNote(parent, tr("Cannot be read: %1").arg(rows->problem()));
    parent->setData(isFailed ? kFailed : kRead, kStateRole);
    Q_EMIT filled(place);
}

void LibraryModel::showNote(QStandardItem* parent, const QString& text)
{
    auto* note = new QStandardItem(text);
    note->setFlags(Qt::ItemIsEnabled);
    parent->appendRow(note);
}

QVariant LibraryModel::data(const QModelIndex& index, int role) const
{
    if (role == Qt::DecorationRole) {
        const TreeData* itemNode = node(index);
        if (itemNode && itemNode->isItem())
            return mPictures->picture(itemNode->getDatabasePath(), itemNode->getId());
    }
    if (role == Qt::SizeHintRole)
        return QSize(0, kRowHeight);
    return QStandardItemModel::data(index, role);
}

void LibraryModel::pictureLoaded(const fileString&, long long)
{
    // Views paint only what is seen, so one change of all is cheaper than a search for the row of one.
    if (rowCount() > 0)
        Q_EMIT dataChanged(index(0, 0), index(rowCount() - 1, 0), {Qt::DecorationRole});
}
