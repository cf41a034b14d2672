#pragma once

#include <QScrollArea>

#include "apps/orv-browser/models/Place.h"

class GalleryModel;
class ItemDetails;
class LibraryNews;
class MakerLogos;
class PlaceDetails;
class SeveralDetails;
class UserLists;

/// Shows what is selected: one item, several, or, where none is, the place itself. It holds nothing of its
/// own, so that it never says anything else than the gallery does. Lives on the interface thread.
class DetailsPane : public QScrollArea
{
    Q_OBJECT

public:
    /// @param news, lists and logos outlive the pane
    DetailsPane(const LibraryNews& news, const UserLists& lists, MakerLogos& logos,
                QWidget* parent = nullptr);

    ItemDetails& item() { return *mItem; }
    PlaceDetails& place() { return *mPlace; }
    SeveralDetails& several() { return *mSeveral; }
    /// @param rows of the selected items
    void show(const GalleryModel& model, const std::vector<int>& rows, const Place& place);

private:
    void showPage(QWidget* page);

    QWidget* mPages;
    ItemDetails* mItem;
    PlaceDetails* mPlace;
    SeveralDetails* mSeveral;
};
