// The window brings its parts together and holds nothing that a part could hold: each pane shows one thing
// and says what the user wants; here that is handed to whoever does it.
#include "apps/orv-browser/MainWindow.h"

#include <algorithm>

#include <QAction>
#include <QCloseEvent>
#include <QFile>
#include <QMenu>
#include <QSplitter>
#include <QVBoxLayout>

#include "apps/orv-browser/FilterActions.h"
#include "apps/orv-browser/FocusRing.h"
#include "apps/orv-browser/ItemActions.h"
#include "apps/orv-browser/LibraryActions.h"
#include "apps/orv-browser/UndoCare.h"
#include "apps/orv-browser/WindowMenus.h"
#include "apps/orv-browser/activities/Activities.h"
#include "apps/orv-browser/activities/ActivityPane.h"
#include "apps/orv-browser/activities/MessageBar.h"
#include "apps/orv-browser/activities/ResultCard.h"
#include "apps/orv-browser/activities/SeenCommand.h"
#include "apps/orv-browser/activities/StatusLine.h"
#include "apps/orv-browser/details/DetailsPane.h"
#include "apps/orv-browser/gallery/GalleryModel.h"
#include "apps/orv-browser/gallery/GalleryPane.h"
#include "apps/orv-browser/gallery/GalleryViews.h"
#include "apps/orv-browser/models/LibraryContent.h"
#include "apps/orv-browser/models/LibraryNews.h"
#include "apps/orv-browser/models/LibraryWatch.h"
#include "apps/orv-browser/models/UserLists.h"
#include "apps/orv-browser/own/OwnActions.h"
#include "apps/orv-browser/own/OwnLibraries.h"
#include "apps/orv-browser/places/PlacesPane.h"
#include "apps/orv-browser/search/FilterChip.h"
#include "apps/orv-browser/search/SearchBar.h"
#include "apps/orv-browser/start/ArchiveDrop.h"
#include "apps/orv-browser/start/FirstStart.h"

namespace {

const QList<int> kPaneWidths{220, 680, 280}; // pixels, to begin with
constexpr int kLeastPlaces = 170;
constexpr int kLeastGallery = 470;
constexpr int kLeastDetails = 140; // so that a window of half a screen may hide them
constexpr int kNarrow = 900;       // a window below this width has no room for the details

} // namespace

MainWindow::MainWindow(const fileString& root, WindowMessages& messages)
    : mRoot(root),
      mLists(new UserLists(root, this)),
      mContent(new LibraryContent(this)),
      mNews(new LibraryNews(root, *mLists, this)),
      mMessages(new MessageBar(messages)),
      mPlaces(new PlacesPane(*mContent, *mLists, *mNews)),
      mGallery(new GalleryPane(*mContent, *mLists, *mNews)),
      mDetails(new DetailsPane(*mNews, *mLists, mPlaces->logos())),
      mPanes(new QSplitter(Qt::Horizontal)),
      mActions(new ItemActions(mGallery->views().model(), *mLists, this)),
      mMenus(new WindowMenus(*this, mActions->undoStack())),
      mStatus(new StatusLine(*mMenus->checkForUpdates, *mMenus->showActivities, this)),
      mLibrary(new LibraryActions(*this, root, mActions->undoStack())),
      mActivities(new Activities(*mLibrary, *mLists, *mMenus->showActivities, this)),
      mFilters(new FilterActions(*this, mActions->undoStack())),
      mFirstStart(new FirstStart(*mLibrary, mGallery->firstStart(), this)),
      mDrop(new ArchiveDrop(*this)),
      mWatch(new LibraryWatch(root, this)),
      mOwn(new OwnLibraries(root, *mLists, mActions->undoStack(), this)),
      mOwnActions(new OwnActions({*this, *mMenus, *mContent, *mPlaces, *mGallery}, *mOwn)),
      mMemory(root, *this, *mPanes, *mPlaces, *mGallery)
{
    setObjectName(QStringLiteral("libraryBrowser"));
    setWindowTitle(tr("Library"));
    new FocusRing(this);
    buildPanes();
    connectMenus();
    connectPanes();
    connectDetails();
    connectLibrary();
    connectFilters();
    connectWatch();
    connectOwn();
    new UndoCare(mActions->undoStack(), *mMenus->undo, *mMenus->redo, mLibrary->imports(), this);
    mContent->refresh();
    mNews->refresh();
    mMemory.restore();
    showDetailsIfWanted();
    mMemory.place(); // which the details may have been too wide for
    leaveGonePlace();
    mGallery->ask();
}

MainWindow::~MainWindow()
{
    mLibrary->stop();   // while there is a window to tell
    delete mOwnActions; // while there are panes to look at
}

void MainWindow::buildPanes()
{
    mPanes->setObjectName(QStringLiteral("panes"));
    mPanes->addWidget(mPlaces);
    mPanes->addWidget(mGallery);
    mPanes->addWidget(mDetails);
    mPlaces->setMinimumWidth(kLeastPlaces);
    mGallery->setMinimumWidth(kLeastGallery);
    mDetails->setMinimumWidth(kLeastDetails);
    mPanes->setStretchFactor(1, 1);
    mPanes->setSizes(kPaneWidths);
    mPanes->setChildrenCollapsible(false);
    auto* main = new QSplitter(Qt::Vertical);
    main->setObjectName(QStringLiteral("libMainSplitter")); // where the progress panel docks
    main->addWidget(mPanes);
    main->addWidget(&mActivities->pane());
    main->setStretchFactor(0, 1);
    main->setChildrenCollapsible(false);

    auto* content = new QWidget;
    auto* layout = new QVBoxLayout(content);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(mMessages);
    layout->addWidget(&mActivities->card());
    layout->addWidget(main, 1);
    setCentralWidget(content);
    setStatusBar(mStatus);
}

/// A catalog may go while it is shown, or between two starts. The place above it remains.
void MainWindow::leaveGonePlace()
{
    const Place place = mGallery->place();
    const auto& catalogs = mContent->catalogs();
    const bool isGone =
        place.isInCatalog() && std::none_of(catalogs.begin(), catalogs.end(),
                                            [&](const auto& one) { return one.database == place.database; });
    if (!isGone)
        return;
    goTo({Place::Kind::Category, place.category, {}, -1});
    mStatus->say(tr("%1 is not in the library any more.")
                     .arg(QFile::decodeName(place.database.stem().toNativeString().c_str())));
}

void MainWindow::goTo(const Place& place)
{
    mGallery->showPlace(place);
    if (mPlaces->current() != place)
        mPlaces->setCurrent(place);
}

void MainWindow::showSelection()
{
    const std::vector<int> rows = mGallery->views().selectedRows();
    mDetails->show(mGallery->views().model(), rows, mGallery->place());
    mActions->choose(rows);
    mMenus->favourite->setEnabled(!rows.empty());
    mMenus->favourite->setChecked(mActions->areFavourites(rows));
    mMenus->showInFolder->setEnabled(rows.size() == 1);
    mOwnActions->update();
}

void MainWindow::showItemMenu(const QPoint& globalPosition)
{
    mMenus->itemMenu()->popup(globalPosition);
}

void MainWindow::markSeen()
{
    if (const auto seen = mLists->seenRun(); seen && *seen != mNews->lastRun())
        mActions->undoStack().push(new SeenCommand(*mNews, *seen));
}

void MainWindow::showDetailsIfWanted()
{
    const bool isNarrow = width() < kNarrow;
    const bool wasNarrow = mPanes->property("isNarrow").toBool();
    if (isNarrow == wasNarrow)
        return;
    mPanes->setProperty("isNarrow", isNarrow);
    mMenus->showDetails->setChecked(!isNarrow);
    mDetails->setVisible(!isNarrow);
}

void MainWindow::resizeEvent(QResizeEvent* event)
{
    QMainWindow::resizeEvent(event);
    showDetailsIfWanted();
}

void MainWindow::catalogChanged(const fileString& database)
{
    mGallery->views().model().pictures().forget(database); // also one that is as it was
    mContent->reload(database);
}

void MainWindow::showRunning(bool isRunning)
{
    mMenus->checkForUpdates->setEnabled(!isRunning);
    mMenus->cancelUpdate->setEnabled(isRunning);
    mStatus->showRunning(isRunning);
}

void MainWindow::filtersChanged()
{
    mGallery->search().filters().refresh();
    mPlaces->applyFilter();
    mGallery->ask();
}

void MainWindow::closeEvent(QCloseEvent* event)
{
    mMemory.save();
    mFirstStart->stop();
    mLibrary->cancel();
    QMainWindow::closeEvent(event);
}
