#include "apps/orv-browser/LibraryModel.h"

#include <algorithm>
#include <map>

#include <QDir>
#include <QFile>
#include <QPersistentModelIndex>
#include <QTimer>

#include "OrvLibrary/UI/TreeCatalogData.h"
#include "OrvLibrary/UI/TreeFolderData.h"
#include "OrvLibrary/UI/TreeItemData.h"
#include "OrvLibrary/host/PathUtils.h"
#include "apps/orv-browser/Background.h"
#include "apps/orv-browser/CatalogDatabase.h"
#include "apps/orv-browser/PictureStore.h"

using Library::LibraryCategoryData;
using Library::TreeData;
using Library::TreeFolderData;
using Library::TreeItemData;

namespace {

constexpr int kRowHeight = 28;        // pixels; room for a picture
constexpr int kPortion = 2000;        // rows a step; about 10 ms
constexpr int kMostNameLetters = 500; // more is cut for display, with an ellipsis

/// Where the reading of a node's children stands; kept in the node.
constexpr int kStateRole = Qt::UserRole + 1;
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

std::string shortened(const std::string& name)
{
    const QString text = QString::fromStdString(name);
    return text.size() <= kMostNameLetters ? name
                                           : (text.left(kMostNameLetters) + QChar(0x2026)).toStdString();
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

/// The sorted children of one node, made off the interface thread, and what went wrong.
struct LibraryModel::Rows
{
    std::vector<std::unique_ptr<TreeData>> nodes;
    std::size_t next = 0;
    QString problem;

    static std::shared_ptr<Rows> read(const fileString& database, long long folder)
    {
        auto rows = std::make_shared<Rows>();
        try {
            const CatalogDatabase catalog(database);
            const bool isTop = folder < 0;
            for (const auto& child : catalog.folders(isTop ? std::nullopt : std::optional<long long>(folder)))
                rows->nodes.push_back(
                    std::make_unique<TreeFolderData>(child.id, database, shortened(child.name)));
            if (!isTop)
                for (const auto& item : catalog.items(folder)) {
                    auto node = std::make_unique<TreeItemData>(item.id, database, shortened(item.name));
                    node->setSelectionPaneName(item.paneName);
                    rows->nodes.push_back(std::move(node));
                }
            std::sort(rows->nodes.begin(), rows->nodes.end(),
                      [](const auto& left, const auto& right) { return *left < *right; });
        } catch (const std::exception& error) {
            rows->nodes.clear();
            rows->problem = QString::fromUtf8(error.what());
        }
        return rows;
    }
};

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
    parentNode->setData(kReading, kStateRole);
    const fileString database = parentNode->getDatabasePath();
    const long long folder = parentNode->getId();
    const QPersistentModelIndex place(parent);
    Background::run(
        mPool, this, [database, folder] { return Rows::read(database, folder); },
        [this, place](const std::shared_ptr<Rows>& rows) {
            if (!place.isValid())
                return; // the catalog has left meanwhile
            QStandardItem* filledNode = itemFromIndex(place);
            removeChildren(*filledNode);
            fill(filledNode, rows);
        });
}

void LibraryModel::fill(QStandardItem* parent, std::shared_ptr<Rows> rows)
{
    QList<QStandardItem*> portion;
    const std::size_t end = std::min(rows->nodes.size(), rows->next + kPortion);
    for (; rows->next < end; ++rows->next)
        portion.append(rows->nodes[rows->next].release());
    parent->appendRows(portion);

    const QPersistentModelIndex place(parent->index());
    if (rows->next < rows->nodes.size()) {
        QTimer::singleShot(0, this, [this, place, rows] {
            if (place.isValid())
                fill(itemFromIndex(place), rows);
        });
        return;
    }
    const bool isFailed = !rows->problem.isEmpty();
    if (isFailed)
        showNote(parent, tr("Cannot be read: %1").arg(rows->problem));
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
