#pragma once

#include <QMainWindow>

#include "OrvLibrary/host/fileString.h"
#include "apps/orv-browser/WindowMemory.h"
#include "apps/orv-browser/models/Place.h"

class Activities;
class ArchiveDrop;
class DetailsPane;
class FilterActions;
class FirstStart;
class GalleryPane;
class ItemActions;
class LibraryActions;
class LibraryContent;
class LibraryNews;
class LibraryWatch;
class MessageBar;
class OwnActions;
class OwnLibraries;
class PlacesPane;
class QSplitter;
class StatusLine;
class UserLists;
class WindowMenus;
class WindowMessages;

/// The library browser: places at the left, the gallery with search and choices in the middle, what is
/// selected at the right, at the top what the library has to tell, and at the bottom, while something goes
/// on, the progress panel. Lives on the interface thread.
class MainWindow : public QMainWindow
{
    Q_OBJECT

public:
    /// @param root the root of the well-known folders
    /// @param messages what the library tells; outlives the window
    MainWindow(const fileString& root, WindowMessages& messages);
    ~MainWindow() override;

    LibraryActions& library() { return *mLibrary; }
    /// Shows a place, in the tree and in the gallery.
    void goTo(const Place& place);
    GalleryPane& gallery() { return *mGallery; }

protected:
    void closeEvent(QCloseEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    void buildPanes();
    void connectMenus();
    void connectPanes();
    void connectDetails();
    void connectLibrary();
    void connectFilters();
    void connectOwn();
    void followLibrary(const fileString& from, const fileString& to);
    void leaveGonePlace();
    void showSelection();
    void showItemMenu(const QPoint& globalPosition);
    void showInFolder();
    void showItem(const fileString& database, long long item);
    void markSeen();
    void showDetailsIfWanted();
    void catalogChanged(const fileString& database);
    void showRunning(bool isRunning);
    void filtersChanged();
    void connectWatch();

    fileString mRoot;
    UserLists* mLists;
    LibraryContent* mContent;
    LibraryNews* mNews;
    MessageBar* mMessages;
    PlacesPane* mPlaces;
    GalleryPane* mGallery;
    DetailsPane* mDetails;
    QSplitter* mPanes;
    ItemActions* mActions;
    WindowMenus* mMenus;
    StatusLine* mStatus;
    LibraryActions* mLibrary;
    Activities* mActivities;
    FilterActions* mFilters;
    FirstStart* mFirstStart;
    ArchiveDrop* mDrop;
    LibraryWatch* mWatch;
    OwnLibraries* mOwn;
    OwnActions* mOwnActions;
    WindowMemory mMemory;
};
