// The tree keeps the index whose folders it shows, and answers all questions from memory. A new index removes
// only the folders of catalogs that have changed; the view opens them again as they were.
#include "apps/orv-browser/places/PlacesModel.h"

#include <algorithm>

#include "OrvLibrary/LibraryCategory.h"
#include "OrvLibrary/UI/TreeCatalogData.h"
#include "OrvLibrary/UI/TreeFolderData.h"
#include "apps/orv-browser/models/LibraryNews.h"
#include "apps/orv-browser/places/MakerLogos.h"
#include "apps/orv-browser/places/PlaceIcons.h"
#include "apps/orv-browser/places/PlaceNames.h"

using Library::LibraryCategoryData;
using Library::TreeData;
using Library::TreeFolderData;

namespace {

constexpr int kPortion = 2000;    // rows that go at once
constexpr int kFirstCategory = 3; // row; the user's lists stand before

/// In the order of their rows.
constexpr Place::Kind kLists[] = {Place::Kind::Favourites, Place::Kind::Recent, Place::Kind::News};

constexpr int kFilledRole = Qt::UserRole + 10; // whether the folders below a node have come
constexpr int kListRole = Qt::UserRole + 11;   // the kind of a list of the user

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

Library::LibraryCategory libraryCategory(int category)
{
    // The user's libraries have no number of their own in the library.
    return static_cast<Library::LibraryCategory>(1 << (category == 1 ? 2 : category == 2 ? 1 : category));
}

} // namespace

PlacesModel::PlacesModel(const LibraryContent& content, const LibraryNews& news, QObject* parent)
    : QStandardItemModel(parent),
      mContent(content),
      mNews(news),
      mLogos(new MakerLogos(this)),
      mShown(content.index())
{
    for (const Place::Kind kind : kLists) {
        auto* list = new QStandardItem(PlaceIcons::list(kind), PlaceNames::name({kind, -1, {}, -1}, *mShown));
        list->setData(static_cast<int>(kind), kListRole);
        list->setEditable(false);
        appendRow(list);
    }
    for (int category = 0; category < LibraryContent::kCategories; ++category) {
        const auto number = libraryCategory(category);
        auto* node = new LibraryCategoryData(number, number, LibraryContent::folderOf(category));
        node->setItemName(PlaceNames::category(category).toStdString());
        appendRow(node);
    }
    connect(&mContent, &LibraryContent::catalogsChanged, this, &PlacesModel::showCatalogs);
    connect(&mContent, &LibraryContent::indexChanged, this, &PlacesModel::showIndex);
    connect(&mNews, &LibraryNews::changed, this, &PlacesModel::showStates);
    connect(mLogos, &MakerLogos::changed, this, &PlacesModel::showLogos);
}

PlacesModel::~PlacesModel()
{
    for (int row = 0; row < rowCount(); ++row)
        removeChildren(*item(row));
}

TreeData* PlacesModel::node(const QModelIndex& index) const
{
    return dynamic_cast<TreeData*>(itemFromIndex(index));
}

std::shared_ptr<const CatalogContent> PlacesModel::contentOf(const TreeData& node) const
{
    return mShown->find(node.getDatabasePath());
}

Place PlacesModel::placeOf(const QModelIndex& index) const
{
    if (!index.isValid())
        return {};
    if (const QVariant list = index.data(kListRole); list.isValid())
        return {static_cast<Place::Kind>(list.toInt()), -1, {}, -1};
    QModelIndex top = index;
    while (top.parent().isValid())
        top = top.parent();
    const int category = top.row() - kFirstCategory;
    if (!index.parent().isValid())
        return {Place::Kind::Category, category, {}, -1};
    const TreeData* shown = node(index);
    if (!shown)
        return {};
    return {shown->getId() < 0 ? Place::Kind::Catalog : Place::Kind::Folder, category,
            shown->getDatabasePath(), shown->getId()};
}

QModelIndex PlacesModel::indexOf(const Place& place)
{
    if (const auto* list = std::find(std::begin(kLists), std::end(kLists), place.kind);
        list != std::end(kLists))
        return index(static_cast<int>(list - std::begin(kLists)), 0);
    if (place.category < 0)
        return {};
    QModelIndex at = index(kFirstCategory + place.category, 0);
    if (!place.isInCatalog())
        return at;
    const auto below = [this](const QModelIndex& parent, const fileString& database, long long id) {
        fetchMore(parent);
        for (int row = 0; row < rowCount(parent); ++row)
            if (const TreeData* child = node(index(row, 0, parent));
                child && child->getDatabasePath() == database && child->getId() == id)
                return index(row, 0, parent);
        return QModelIndex();
    };
    at = below(at, place.database, -1);
    const auto content = mShown->find(place.database);
    if (place.kind == Place::Kind::Catalog || !at.isValid() || !content)
        return place.kind == Place::Kind::Catalog ? at : QModelIndex();
    std::vector<long long> way;
    for (int folder = content->folderAt(place.folder); folder >= 0;
         folder = content->folders()[static_cast<std::size_t>(folder)].parent)
        way.push_back(content->folders()[static_cast<std::size_t>(folder)].id);
    if (way.empty())
        return {};
    for (auto id = way.rbegin(); id != way.rend() && at.isValid(); ++id)
        at = below(at, place.database, *id);
    return at;
}

void PlacesModel::forEachCatalog(const std::function<void(const QModelIndex&, TreeData&)>& call)
{
    for (int row = kFirstCategory; row < rowCount(); ++row)
        for (int child = 0; child < item(row)->rowCount(); ++child)
            call(index(row, 0), dynamic_cast<TreeData&>(*item(row)->child(child)));
}

void PlacesModel::showCatalogs()
{
    for (int category = 0; category < LibraryContent::kCategories; ++category)
        showCategory(*item(kFirstCategory + category), category);
}

void PlacesModel::showCategory(QStandardItem& category, int number)
{
    std::vector<fileString> wanted;
    for (const LibraryContent::Catalog& catalog : mContent.catalogs())
        if (catalog.category == number)
            wanted.push_back(catalog.database);
    const auto databaseAt = [&](int row) {
        return dynamic_cast<TreeData&>(*category.child(row)).getDatabasePath();
    };
    for (int row = category.rowCount() - 1; row >= 0; --row)
        if (std::find(wanted.begin(), wanted.end(), databaseAt(row)) == wanted.end()) {
            Q_EMIT aboutToLose();
            removeChildren(*category.child(row));
            category.removeRow(row);
            Q_EMIT lost();
        }
    for (std::size_t i = 0; i < wanted.size(); ++i) {
        const int row = static_cast<int>(i);
        if (row < category.rowCount() && databaseAt(row) == wanted[i])
            continue;
        category.insertRow(row, new TreeFolderData(-1, wanted[i], wanted[i].stem().toNativeString()));
    }
}

void PlacesModel::showIndex()
{
    const std::shared_ptr<const ItemIndex> former = mShown;
    std::vector<TreeData*> changed;
    forEachCatalog([&](const QModelIndex&, TreeData& catalog) {
        const fileString& database = catalog.getDatabasePath();
        if (former->find(database) != mContent.index()->find(database))
            changed.push_back(&catalog);
    });
    for (const TreeData* catalog : changed)
        Q_EMIT aboutToRefill(catalog->getDatabasePath());
    for (TreeData* catalog : changed) {
        removeChildren(*catalog);
        catalog->setData(false, kFilledRole);
    }
    mShown = mContent.index();
    for (const TreeData* catalog : changed)
        Q_EMIT refilled(catalog->index());
    updateCounts();
}

void PlacesModel::showStates()
{
    forEachCatalog([this](const QModelIndex&, const TreeData& catalog) {
        Q_EMIT dataChanged(catalog.index(), catalog.index(), {kStateRole});
    });
}

void PlacesModel::updateCounts()
{
    for (int row = kFirstCategory; row < rowCount(); ++row)
        Q_EMIT dataChanged(index(row, 0), index(row, 0), {kCountRole});
}

bool PlacesModel::hasChildren(const QModelIndex& parent) const
{
    const TreeData* above = node(parent);
    if (!above || !parent.parent().isValid() || above->rowCount() > 0)
        return QStandardItemModel::hasChildren(parent);
    const auto content = contentOf(*above);
    if (!content)
        return false;
    if (above->getId() < 0)
        return !content->folders().empty();
    const int position = content->folderAt(above->getId());
    return position >= 0 && content->folders()[static_cast<std::size_t>(position)].end > position + 1;
}

bool PlacesModel::canFetchMore(const QModelIndex& parent) const
{
    const TreeData* above = node(parent);
    return above && parent.parent().isValid() && !above->data(kFilledRole).toBool() && hasChildren(parent);
}

void PlacesModel::fetchMore(const QModelIndex& parent)
{
    if (!canFetchMore(parent))
        return;
    TreeData* above = node(parent);
    const auto content = contentOf(*above);
    const auto& folders = content->folders();
    const int position = above->getId() < 0 ? -1 : content->folderAt(above->getId());
    const int end =
        position < 0 ? static_cast<int>(folders.size()) : folders[static_cast<std::size_t>(position)].end;
    QList<QStandardItem*> rows;
    for (int child = position + 1; child < end; child = folders[static_cast<std::size_t>(child)].end) {
        const CatalogContent::Folder& folder = folders[static_cast<std::size_t>(child)];
        rows << new TreeFolderData(folder.id, content->database(), folder.name);
    }
    above->setData(true, kFilledRole);
    above->appendRows(rows);
}
