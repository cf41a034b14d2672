// Each pane says what the user wants; here that is handed to whoever does it.
#include <utility>

#include <QAction>

#include "OrvLibrary/IO/ErrorLog.h"
#include "OrvLibrary/LibraryFilterManager.h"
#include "apps/orv-browser/FilterActions.h"
#include "apps/orv-browser/ItemActions.h"
#include "apps/orv-browser/LibraryActions.h"
#include "apps/orv-browser/MainWindow.h"
#include "apps/orv-browser/WindowMenus.h"
#include "apps/orv-browser/activities/Activities.h"
#include "apps/orv-browser/activities/StatusLine.h"
#include "apps/orv-browser/activities/UpdateController.h"
#include "apps/orv-browser/details/DetailsPane.h"
#include "apps/orv-browser/details/ItemDetails.h"
#include "apps/orv-browser/details/PlaceDetails.h"
#include "apps/orv-browser/details/SeveralDetails.h"
#include "apps/orv-browser/dialogs/LogDialog.h"
#include "apps/orv-browser/dialogs/ShortcutSheet.h"
#include "apps/orv-browser/gallery/GalleryBar.h"
#include "apps/orv-browser/gallery/GalleryModel.h"
#include "apps/orv-browser/gallery/GalleryPane.h"
#include "apps/orv-browser/gallery/GalleryViews.h"
#include "apps/orv-browser/models/LibraryContent.h"
#include "apps/orv-browser/models/LibraryNews.h"
#include "apps/orv-browser/models/LibraryWatch.h"
#include "apps/orv-browser/models/UserLists.h"
#include "apps/orv-browser/own/OwnActions.h"
#include "apps/orv-browser/own/OwnLibraries.h"
#include "apps/orv-browser/places/MakerLogos.h"
#include "apps/orv-browser/places/PlaceMemory.h"
#include "apps/orv-browser/places/PlacesPane.h"
#include "apps/orv-browser/search/FilterChip.h"
#include "apps/orv-browser/search/SearchBar.h"
#include "apps/orv-browser/start/ArchiveDrop.h"

void MainWindow::connectMenus()
{
    const auto on = [this](const QAction* action, auto&& call) {
        connect(action, &QAction::triggered, this, std::forward<decltype(call)>(call));
    };
    on(mMenus->importArchive, [this] { mLibrary->openArchive(); });
    on(mMenus->preferences, [this] { mLibrary->editPreferences(); });
    on(mMenus->quit, [this] { close(); });
    on(mMenus->checkForUpdates, [this] { mLibrary->checkForUpdates(); });
    on(mMenus->cancelUpdate, [this] { mLibrary->updates().cancel(); });
    on(mMenus->refreshManufacturers, [this] { mLibrary->refreshManufacturers(); });
    on(mMenus->markSeen, [this] { markSeen(); });
    on(mMenus->editFilters, [this] { mFilters->edit(mPlaces->databases()); });
    on(mMenus->showLog, [this] { LogDialog(Library::ErrorLog::file(), this).exec(); });
    on(mMenus->search, [this] { mGallery->search().focusField(); });
    on(mMenus->showGrid, [this] { mGallery->bar().setGrid(true); });
    on(mMenus->showList, [this] { mGallery->bar().setGrid(false); });
    on(mMenus->showDetails, [this] { mDetails->setVisible(mMenus->showDetails->isChecked()); });
    on(mMenus->favourite, [this] { mActions->toggleFavourites(mGallery->views().selectedRows()); });
    on(mMenus->showInFolder, [this] { showInFolder(); });
    on(mMenus->shortcuts, [this] { ShortcutSheet(*this).exec(); });
}

void MainWindow::connectPanes()
{
    SearchBar& search = mGallery->search();
    GalleryViews& views = mGallery->views();
    connect(&search, &SearchBar::changed, mPlaces, &PlacesPane::applyFilter);
    connect(mPlaces, &PlacesPane::chosen, mGallery, &GalleryPane::showPlace);
    connect(mGallery, &GalleryPane::placeChosen, this, &MainWindow::goTo);
    connect(&views, &GalleryViews::selectionChanged, this, &MainWindow::showSelection);
    connect(&views, &GalleryViews::menuAsked, this, &MainWindow::showItemMenu);
    connect(&views, &GalleryViews::starClicked, this, [this](int row) { mActions->toggleFavourites({row}); });
    connect(&views, &GalleryViews::activated, this, [this] {
        for (const int row : mGallery->views().selectedRows())
            mActions->noteRecent(mGallery->views().model().itemAt(row));
    });
    connect(&views.model(), &QAbstractItemModel::dataChanged, this, &MainWindow::showSelection);
    connect(mContent, &LibraryContent::indexChanged, this,
            [this] { mLists->followIndex(*mContent->index()); });
    connect(mContent, &LibraryContent::catalogsChanged, this, &MainWindow::leaveGonePlace);
    connect(mContent, &LibraryContent::catalogChanged, this,
            [this](const fileString& database) { mGallery->views().model().pictures().forget(database); });
    connect(mDrop, &ArchiveDrop::dropped, mLibrary, &LibraryActions::importArchives);
}

void MainWindow::connectDetails()
{
    connect(&mDetails->item(), &ItemDetails::folderAsked, this, &MainWindow::showInFolder);
    connect(&mDetails->item(), &ItemDetails::similarChosen, this, &MainWindow::showItem);
    connect(&mDetails->item(), &ItemDetails::styleAsked, &mGallery->search(), &SearchBar::chooseStyle);
    connect(&mDetails->item(), &ItemDetails::makerAsked, this, [this](std::int32_t maker) {
        goTo({});
        mGallery->search().chooseMaker(maker);
    });
    connect(&mDetails->item(), &ItemDetails::favouriteClicked, mMenus->favourite, &QAction::trigger);
    connect(&mDetails->several(), &SeveralDetails::favouritesAsked, this, [this](bool areFavourites) {
        mActions->setFavourites(mGallery->views().selectedRows(), areFavourites);
    });
    connect(&mDetails->place(), &PlaceDetails::checkAsked, mLibrary, &LibraryActions::checkForUpdates);
    connect(&mDetails->place(), &PlaceDetails::seenAsked, this, &MainWindow::markSeen);
    connect(&mDetails->place(), &PlaceDetails::fetchAgainAsked, mLibrary, &LibraryActions::fetchAgain);
}

void MainWindow::connectLibrary()
{
    connect(mStatus, &StatusLine::cancelAsked, mLibrary, &LibraryActions::cancel);
    connect(mStatus, &StatusLine::logAsked, mMenus->showLog, &QAction::trigger);
    connect(mActivities, &Activities::logAsked, mMenus->showLog, &QAction::trigger);
    connect(mActivities, &Activities::newsAsked, this, [this] { goTo({Place::Kind::News, -1, {}, -1}); });
    connect(&mLibrary->updates(), &UpdateController::speedChanged, mStatus, &StatusLine::showSpeed);
    connect(mLibrary, &LibraryActions::catalogChanged, this, &MainWindow::catalogChanged);
    connect(mLibrary, &LibraryActions::foldersChanged, mContent, &LibraryContent::refresh);
    connect(mLibrary, &LibraryActions::foldersChanged, mNews, &LibraryNews::refresh);
    connect(mLibrary, &LibraryActions::checked, mNews, &LibraryNews::refresh);
    connect(mLibrary, &LibraryActions::runningChanged, this, &MainWindow::showRunning);
    connect(mLibrary, &LibraryActions::importingChanged, mStatus, &StatusLine::showImporting);
    connect(mLibrary, &LibraryActions::said, mStatus, &StatusLine::say);
    // Behind the sentence on that for which the lists were saved.
    const auto tellLists = [this](const QString& reason) {
        mStatus->say(tr("Favourites and what you looked at last were not saved: %1").arg(reason));
    };
    connect(mLists, &UserLists::notSaved, mStatus, tellLists, Qt::QueuedConnection);
    connect(mLibrary, &LibraryActions::recordsChanged, mGallery, &GalleryPane::ask);
    connect(mLibrary, &LibraryActions::recordsChanged, &mPlaces->logos(), &MakerLogos::forget);
}

void MainWindow::connectFilters()
{
    SearchBar& search = mGallery->search();
    connect(&search.filters(), &FilterChip::editAsked, mMenus->editFilters, &QAction::trigger);
    connect(&search.filters(), &FilterChip::useAsked, mFilters, &FilterActions::use);
    connect(&search.filters(), &FilterChip::saveAsked, this, [this, &search] {
        mFilters->saveAs(mGallery->shownDatabases(), search.choices().join(QStringLiteral(", ")));
    });
    connect(mFilters, &FilterActions::changed, this, &MainWindow::filtersChanged);
}

/// The window's own changes are announced at once. Those of other programs are seen in their files.
void MainWindow::connectWatch()
{
    connect(mWatch, &LibraryWatch::libraryChanged, this, [this] {
        mContent->refresh();
        mNews->refresh();
    });
    connect(mWatch, &LibraryWatch::filtersChanged, this, [this] {
        LibraryFilterManager::getLibraryFilterManager().loadFilters();
        filtersChanged();
    });
}

void MainWindow::connectOwn()
{
    connect(mPlaces, &PlacesPane::itemsDropped, mOwn, &OwnLibraries::copy);
    connect(mOwn, &OwnLibraries::changed, this, &MainWindow::catalogChanged);
    connect(mOwn, &OwnLibraries::created, this, [this](const fileString& database) {
        goTo({Place::Kind::Catalog, LibraryContent::kUserCategory, database, -1});
    });
    connect(mOwn, &OwnLibraries::moved, this, &MainWindow::followLibrary);
    connect(mOwn, &OwnLibraries::said, mStatus, &StatusLine::say);
    connect(mOwnActions, &OwnActions::said, mStatus, &StatusLine::say);
    mDetails->item().setCopyMenu(mMenus->copyTo);
    mDetails->several().setCopyMenu(mMenus->copyTo);
}

/// The user sees the same library under its new name.
void MainWindow::followLibrary(const fileString& from, const fileString& to)
{
    Place place = mGallery->place();
    std::vector<Place> open = mPlaces->memory().open();
    for (Place& one : open)
        if (one.database == from)
            one.database = to;
    mContent->refresh();
    mPlaces->memory().setOpen(open);
    if (place.database != from)
        return;
    place.database = to;
    goTo(place);
}

void MainWindow::showInFolder()
{
    const std::vector<int> rows = mGallery->views().selectedRows();
    if (rows.size() != 1)
        return;
    const ItemDrag::Item item = mGallery->views().model().itemAt(rows.front());
    showItem(item.database, item.id);
}

/// Shows an item where it lies, without words or choices that might hide it.
void MainWindow::showItem(const fileString& database, long long item)
{
    const auto catalog = mContent->index()->find(database);
    const int position = catalog ? catalog->itemAt(item) : -1;
    if (position < 0)
        return; // it has gone meanwhile
    const int folder = catalog->items()[static_cast<std::size_t>(position)].folder;
    const bool hasFolder = folder >= 0;
    const Place place{hasFolder ? Place::Kind::Folder : Place::Kind::Catalog, catalog->category(), database,
                      hasFolder ? catalog->folders()[static_cast<std::size_t>(folder)].id : -1};
    mGallery->search().clear();
    mGallery->showItem(place, database, item);
    mPlaces->setCurrent(place);
}
