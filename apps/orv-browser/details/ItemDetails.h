#pragma once

#include <QPersistentModelIndex>
#include <QWidget>

#include "apps/orv-browser/models/ItemQuery.h"

class DetailRows;
class GalleryModel;
class MakerCard;
class MakerLogos;
class PictureView;
class QLabel;
class QMenu;
class QPushButton;
class QToolButton;
class SimilarSearch;
class SimilarView;
class UserLists;

/// One item: its picture, where it lies, its style and its maker. Lives on the interface thread.
class ItemDetails : public QWidget
{
    Q_OBJECT

public:
    /// @param lists and logos outlive the widget
    ItemDetails(const UserLists& lists, MakerLogos& logos, QWidget* parent = nullptr);

    void show(const GalleryModel& model, int row);
    /// @param menu the libraries that the item can be copied to; outlives the widget
    void setCopyMenu(QMenu* menu);

Q_SIGNALS:
    /// The user wants to see the item where it lies.
    void folderAsked();
    void styleAsked(std::int32_t style);
    void makerAsked(std::int32_t maker);
    void favouriteClicked();
    /// The user wants to see another item, which is like this one.
    void similarChosen(const fileString& database, long long item);

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    void showPictureState(const QModelIndex& index);
    void showSimilar(const ItemQuery::Found& found);

    QLabel* mTitle;
    PictureView* mPicture;
    QLabel* mPictureNote;
    QToolButton* mFavourite;
    QPushButton* mCopy;
    DetailRows* mRows;
    QLabel* mNew;
    QLabel* mCatalog;
    QLabel* mFolder;
    QLabel* mPaneName;
    QLabel* mStyle;
    QLabel* mMaker;
    MakerCard* mMakerCard;
    SimilarSearch* mSearch;
    QLabel* mSimilarTitle;
    SimilarView* mSimilar;
    std::int32_t mStyleNumber = -1;
    std::int32_t mMakerNumber = -1;
    QPersistentModelIndex mIndex;
};
