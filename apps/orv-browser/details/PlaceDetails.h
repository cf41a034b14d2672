#pragma once

#include <QWidget>

#include "apps/orv-browser/models/ItemIndex.h"
#include "apps/orv-browser/models/Place.h"

class DetailRows;
class LibraryNews;
class QLabel;
class QPushButton;

/// Shows a place if no item is selected: for a catalog its version, size, date and numbers, and its actions;
/// for other places the number of items. Lives on the interface thread.
class PlaceDetails : public QWidget
{
    Q_OBJECT

public:
    /// @param news must outlive the widget
    explicit PlaceDetails(const LibraryNews& news, QWidget* parent = nullptr);

    /// @param count the number of items shown
    void show(const Place& place, const ItemIndex& index, int count);

Q_SIGNALS:
    void checkAsked();
    /// The user wants to download the catalog again.
    void fetchAgainAsked(const Place& place);
    /// The user has seen what is new.
    void seenAsked();

private:
    void showCatalog(const CatalogContent& catalog);
    void openFolder() const;

    const LibraryNews& mNews;
    Place mPlace;
    QLabel* mTitle;
    QLabel* mProblem;
    DetailRows* mRows;
    QLabel* mItems;
    QLabel* mState;
    QLabel* mGone;
    QLabel* mFolders;
    QLabel* mVersion;
    QLabel* mSize;
    QLabel* mDate;
    QLabel* mLastCheck;
    QLabel* mHint;
    QPushButton* mCheck;
    QPushButton* mFetchAgain;
    QPushButton* mShowFile;
    QPushButton* mSeen;
};
