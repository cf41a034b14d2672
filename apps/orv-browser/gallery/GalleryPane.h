#pragma once

#include <QWidget>

#include "apps/orv-browser/dialogs/FilterEditor.h"
#include "apps/orv-browser/models/ItemQuery.h"
#include "apps/orv-browser/models/Place.h"

class FirstStartPage;
class GalleryBar;
class GalleryViews;
class ItemSearch;
class LibraryNews;
class LibraryContent;
class NothingFoundPage;
class QStackedWidget;
class SearchBar;
class UserLists;

/// The middle of the window: search and choices, the way to the place, and its items. It asks for the items
/// anew whenever the place, a word, a choice or the library changes. Lives on the interface thread.
class GalleryPane : public QWidget
{
    Q_OBJECT

public:
    /// @param content, lists and news outlive the pane
    GalleryPane(const LibraryContent& content, const UserLists& lists, const LibraryNews& news,
                QWidget* parent = nullptr);

    const Place& place() const { return mPlace; }
    void showPlace(const Place& place);
    /// Shows a place and, once its items are there, selects one of them.
    void showItem(const Place& place, const fileString& database, long long item);
    SearchBar& search() { return *mSearch; }
    GalleryBar& bar() { return *mBar; }
    GalleryViews& views() { return *mViews; }
    FirstStartPage& firstStart() { return *mFirstStart; }
    /// Asks for the items anew.
    void ask();
    /// The catalogs that hold the items that are shown, as far as a filter can name them.
    std::vector<FilterEditor::Database> shownDatabases() const;
    /// Whether the items that are shown are those of the place, the words and the choices.
    bool isSettled() const;

Q_SIGNALS:
    /// The user went to another place from here.
    void placeChosen(const Place& place);
    /// Other items are shown.
    void itemsChanged();

private:
    void connectParts();
    void showFound(const ItemQuery::Found& found);
    void showPage(const ItemQuery::Found& found);
    void showWay();
    void zoom(int steps);
    void searchEverywhere();

    const LibraryContent& mContent;
    const UserLists& mLists;
    const LibraryNews& mNews;
    Place mPlace;
    Place mShownPlace;          ///< the place of the items that are shown
    fileString mWantedDatabase; ///< of the item to select once it is shown
    long long mWantedItem = -1;
    bool mIsFocusWanted = false; ///< once the items are there
    ItemSearch* mAsker;
    SearchBar* mSearch;
    GalleryBar* mBar;
    GalleryViews* mViews;
    NothingFoundPage* mNothing;
    FirstStartPage* mFirstStart;
    QStackedWidget* mPages;
};
