#include "apps/orv-browser/places/PlacesPane.h"

#include <algorithm>

#include <QEventLoop>
#include <QMimeData>
#include <QToolButton>
#include <QTreeView>
#include <QVBoxLayout>

#include "OrvHost/records/FilterChange.h"
#include "OrvLibrary/LibraryFilterManager.h"
#include "apps/orv-browser/models/LibraryContent.h"
#include "apps/orv-browser/models/LibraryNews.h"
#include "apps/orv-browser/models/UserLists.h"
#include "apps/orv-browser/places/MakerLogos.h"
#include "apps/orv-browser/places/PlaceDelegate.h"
#include "apps/orv-browser/places/PlaceIcons.h"
#include "apps/orv-browser/places/PlaceMemory.h"
#include "apps/orv-browser/places/PlacesModel.h"

PlacesPane::PlacesPane(LibraryContent& content, const UserLists& lists, const LibraryNews& news,
                       QWidget* parent)
    : QWidget(parent),
      mContent(content),
      mLists(lists),
      mNews(news),
      mModel(new PlacesModel(content, news, this)),
      mTree(new QTreeView),
      mMemory(new PlaceMemory(*mTree, *mModel))
{
    setObjectName(QStringLiteral("placesPane"));
    buildTree();
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(mTree);
    layout->addWidget(newLibraryButton());
    connect(&mLists, &UserLists::favouritesChanged, this, &PlacesPane::showListCounts);
    connect(&mLists, &UserLists::recentChanged, this, &PlacesPane::showListCounts);
    connect(&mNews, &LibraryNews::changed, this, &PlacesPane::showListCounts);
    showListCounts();
    connect(&mContent, &LibraryContent::catalogsChanged, this, &PlacesPane::openNewCategories);
    connect(&mContent, &LibraryContent::indexChanged, this, &PlacesPane::applyFilter);
    connect(mTree->selectionModel(), &QItemSelectionModel::currentChanged, this, &PlacesPane::chooseCurrent);
    connect(mMemory, &PlaceMemory::restored, this, &PlacesPane::chooseCurrent);
    connect(mModel, &PlacesModel::itemsDropped, this, [this](const QMimeData* dropped, const Place& target) {
        const std::vector<ItemDrag::Item> items = ItemDrag::decode(*dropped);
        if (!items.empty())
            Q_EMIT itemsDropped(items, target);
    });
}

/// The view goes first: the model's rows leave one by one, and each would choose another place.
PlacesPane::~PlacesPane()
{
    delete mTree;
}

void PlacesPane::buildTree()
{
    mTree->setObjectName(QStringLiteral("places"));
    mTree->setAccessibleName(tr("Places"));
    mTree->setModel(mModel);
    mTree->setItemDelegate(new PlaceDelegate(this));
    mTree->setHeaderHidden(true);
    mTree->setUniformRowHeights(true);
    mTree->setIconSize({18, 18});
    mTree->setIndentation(14);
    mTree->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    mTree->setTextElideMode(Qt::ElideRight);
    mTree->setDragDropMode(QAbstractItemView::DropOnly);
    mTree->setDefaultDropAction(Qt::CopyAction);
    mTree->setEditTriggers(QAbstractItemView::NoEditTriggers);
    mTree->setContextMenuPolicy(Qt::CustomContextMenu);
    connect(mTree, &QWidget::customContextMenuRequested, this,
            [this](const QPoint& at) { Q_EMIT menuAsked(mTree->viewport()->mapToGlobal(at)); });
}

/// It stands right below the user's own libraries, which are the last ones in the tree.
QWidget* PlacesPane::newLibraryButton()
{
    auto* button = new QToolButton;
    button->setObjectName(QStringLiteral("addLibrary"));
    button->setText(tr("New library…"));
    button->setToolTip(tr("Make a library of your own"));
    button->setIcon(PlaceIcons::addition());
    button->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    button->setAutoRaise(true);
    button->setFocusPolicy(Qt::TabFocus);
    button->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    connect(button, &QToolButton::clicked, this, &PlacesPane::newLibraryAsked);
    return button;
}

void PlacesPane::showListCounts()
{
    mModel->setListCounts(static_cast<int>(mLists.favourites().size()),
                          static_cast<int>(mLists.recent().size()), mNews.items()->count());
}

MakerLogos& PlacesPane::logos()
{
    return mModel->logos();
}

Place PlacesPane::current() const
{
    return mModel->placeOf(mTree->currentIndex());
}

void PlacesPane::setCurrent(const Place& place)
{
    const QModelIndex index = mModel->indexOf(place);
    if (!index.isValid() && place.isInCatalog()) {
        mMemory->wantCurrent(place);
        return;
    }
    mTree->setCurrentIndex(index);
    if (index.isValid())
        mTree->scrollTo(index);
}

void PlacesPane::chooseCurrent()
{
    const Place place = current();
    if (mMemory->isRestoring() || place == mLast)
        return;
    mLast = place;
    const QString problem = mTree->currentIndex().data(PlacesModel::kProblemRole).toString();
    if (!problem.isEmpty())
        mContent.reload(place.database); // it may be whole again
    Q_EMIT chosen(place);
}

void PlacesPane::openNewCategories()
{
    for (const LibraryContent::Catalog& catalog : mContent.catalogs()) {
        const auto empty = std::find(mEmpty.begin(), mEmpty.end(), catalog.category);
        if (empty == mEmpty.end())
            continue;
        mEmpty.erase(empty); // what the user closes from now on stays closed
        mTree->expand(mModel->indexOf({Place::Kind::Category, catalog.category, {}, -1}));
    }
}

void PlacesPane::applyFilter()
{
    const LibraryFilterManager& manager = LibraryFilterManager::getLibraryFilterManager();
    const bool isFiltering = OrvHost::FilterChange::isFiltering(manager);
    mModel->forEachCatalog([&](const QModelIndex& category, const Library::TreeData& catalog) {
        // A catalog that is not read yet, or cannot be read, is in no filter.
        const auto content = mContent.index()->find(catalog.getDatabasePath());
        const bool isShown = !isFiltering || (content && manager.isFilteredDatabase(content->id()));
        mTree->setRowHidden(catalog.row(), category, !isShown);
    });
}

std::vector<FilterEditor::Database> PlacesPane::databases()
{
    QEventLoop loop;
    connect(&mContent, &LibraryContent::indexChanged, &loop, [&] {
        if (!mContent.isReading())
            loop.quit();
    });
    if (mContent.isReading())
        loop.exec();
    std::vector<FilterEditor::Database> databases;
    for (const auto& content : mContent.index()->catalogs())
        if (!content->id().empty())
            databases.push_back({content->id(), content->name().toStdString()});
    return databases;
}
