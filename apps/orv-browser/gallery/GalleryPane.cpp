#include "apps/orv-browser/gallery/GalleryPane.h"

#include <set>

#include <QStackedWidget>
#include <QVBoxLayout>

#include "apps/orv-browser/gallery/Breadcrumbs.h"
#include "apps/orv-browser/gallery/EmptyPages.h"
#include "apps/orv-browser/gallery/GalleryBar.h"
#include "apps/orv-browser/gallery/GalleryModel.h"
#include "apps/orv-browser/gallery/GalleryViews.h"
#include "apps/orv-browser/models/ItemSearch.h"
#include "apps/orv-browser/models/LibraryContent.h"
#include "apps/orv-browser/models/LibraryNews.h"
#include "apps/orv-browser/models/Names.h"
#include "apps/orv-browser/models/UserLists.h"
#include "apps/orv-browser/places/PlaceNames.h"
#include "apps/orv-browser/search/SearchBar.h"
#include "apps/orv-browser/start/FirstStartPage.h"

namespace {

constexpr int kZoomStep = 16; // pixels

} // namespace

GalleryPane::GalleryPane(const LibraryContent& content, const UserLists& lists, const LibraryNews& news,
                         QWidget* parent)
    : QWidget(parent),
      mContent(content),
      mLists(lists),
      mNews(news),
      mAsker(new ItemSearch(this)),
      mSearch(new SearchBar),
      mBar(new GalleryBar),
      mViews(new GalleryViews(lists)),
      mNothing(new NothingFoundPage),
      mFirstStart(new FirstStartPage),
      mPages(new QStackedWidget)
{
    mPages->setObjectName(QStringLiteral("galleryPages"));
    mPages->addWidget(mViews);
    mPages->addWidget(mNothing);
    mPages->addWidget(mFirstStart);
    mPages->setCurrentWidget(mFirstStart); // until a catalog is known
    auto* layout = new QVBoxLayout(this);
    mSearch->addBesideField(mBar->tools());
    layout->addWidget(mSearch);
    layout->addWidget(mBar);
    layout->addWidget(mPages, 1);
    connectParts();
    mViews->setSide(mBar->side());
    showWay();
}

void GalleryPane::connectParts()
{
    connect(mAsker, &ItemSearch::found, this, &GalleryPane::showFound);
    connect(mSearch, &SearchBar::changed, this, &GalleryPane::ask);
    connect(mSearch, &SearchBar::itemsAsked, this, [this] {
        mIsFocusWanted = true;
        ask();
    });
    connect(mBar, &GalleryBar::orderChanged, this, &GalleryPane::ask);
    connect(mBar, &GalleryBar::sideChanged, mViews, &GalleryViews::setSide);
    connect(mBar, &GalleryBar::gridChanged, mViews, &GalleryViews::setGrid);
    connect(&mBar->breadcrumbs(), &Breadcrumbs::chosen, this, &GalleryPane::placeChosen);
    connect(mViews, &GalleryViews::zoomAsked, this, &GalleryPane::zoom);
    connect(mNothing, &NothingFoundPage::clearAsked, mSearch, &SearchBar::clear);
    connect(mNothing, &NothingFoundPage::everywhereAsked, this, &GalleryPane::searchEverywhere);
    connect(&mContent, &LibraryContent::indexChanged, this, &GalleryPane::ask);
    connect(&mContent, &LibraryContent::indexChanged, this, &GalleryPane::showWay);
    connect(&mContent, &LibraryContent::catalogsChanged, this, [this] { showPage(mViews->model().found()); });
    connect(&mLists, &UserLists::favouritesChanged, this, &GalleryPane::ask);
    connect(&mNews, &LibraryNews::changed, this, &GalleryPane::ask);
    connect(&mLists, &UserLists::recentChanged, this, [this] {
        if (mPlace.kind != Place::Kind::Recent) // the list must not move under the pointer
            ask();
    });
}

void GalleryPane::showPlace(const Place& place)
{
    if (place == mPlace)
        return;
    mPlace = place;
    showWay();
    ask();
}

void GalleryPane::showItem(const Place& place, const fileString& database, long long item)
{
    mWantedDatabase = database;
    mWantedItem = item;
    mPlace = place;
    showWay();
    ask();
}

void GalleryPane::ask()
{
    ItemQuery query;
    query.place = mPlace;
    mSearch->addTo(query);
    query.order = mBar->order();
    query.isDescending = mBar->isDescending();
    query.styleNames = Names::foldedStyles();
    query.makerNames = Names::foldedMakers();
    query.favourites = mLists.favourites();
    query.recent = mLists.recent();
    query.news = mNews.items();
    mAsker->ask(query, mContent.index());
}

std::vector<FilterEditor::Database> GalleryPane::shownDatabases() const
{
    const ItemQuery::Found& found = mViews->model().found();
    std::set<std::uint32_t> positions;
    for (const ItemRef ref : found.items)
        positions.insert(ref.catalog);
    std::vector<FilterEditor::Database> databases;
    for (const std::uint32_t position : positions) {
        const CatalogContent& catalog = *found.index->catalogs()[position];
        if (!catalog.id().empty())
            databases.push_back({catalog.id(), catalog.name().toStdString()});
    }
    return databases;
}

bool GalleryPane::isSettled() const
{
    return !mAsker->isAsking() && !mContent.isReading() && !mNews.isReading() && !mSearch->isWaiting();
}

void GalleryPane::showFound(const ItemQuery::Found& found)
{
    mViews->show(found, mPlace == mShownPlace);
    mShownPlace = mPlace;
    mBar->setCount(static_cast<int>(found.items.size()));
    mSearch->showNumbers(found);
    showPage(found);
    if (mWantedItem >= 0 && mViews->select(mWantedDatabase, mWantedItem))
        mWantedItem = -1;
    if (mIsFocusWanted && !found.items.empty())
        mViews->focusItems();
    mIsFocusWanted = false;
    Q_EMIT itemsChanged();
}

void GalleryPane::showPage(const ItemQuery::Found& found)
{
    if (mContent.catalogs().empty())
        mPages->setCurrentWidget(mFirstStart);
    else if (found.items.empty() && !mContent.isReading()) {
        mNothing->show(PlaceNames::name(mPlace, *mContent.index()), mSearch->restrictions(),
                       mPlace.kind == Place::Kind::Everything && !mSearch->hasChoices() ? 0
                                                                                        : found.everywhere);
        mPages->setCurrentWidget(mNothing);
    } else
        mPages->setCurrentWidget(mViews);
}

void GalleryPane::showWay()
{
    std::vector<Breadcrumbs::Step> steps;
    for (const Place& place : PlaceNames::way(mPlace, *mContent.index()))
        steps.push_back({place, PlaceNames::name(place, *mContent.index())});
    mBar->breadcrumbs().show(steps);
}

void GalleryPane::zoom(int steps)
{
    mBar->setSide(mBar->side() + steps * kZoomStep);
}

/// Keeps the words and lets all else go.
void GalleryPane::searchEverywhere()
{
    mSearch->clearChoices();
    Q_EMIT placeChosen(Place());
    ask();
}
