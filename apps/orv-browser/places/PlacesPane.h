#pragma once

#include <vector>

#include <QWidget>

#include "apps/orv-browser/dialogs/FilterEditor.h"
#include "apps/orv-browser/models/ItemDrag.h"
#include "apps/orv-browser/models/Place.h"

class LibraryContent;
class LibraryNews;
class MakerLogos;
class PlaceMemory;
class PlacesModel;
class QTreeView;
class UserLists;

/// The tree of places at the left: the user's lists, the categories with their catalogs and folders, as far
/// as the stored filter lets them through. Lives on the interface thread.
class PlacesPane : public QWidget
{
    Q_OBJECT

public:
    /// @param content, lists and news outlive the pane
    PlacesPane(LibraryContent& content, const UserLists& lists, const LibraryNews& news,
               QWidget* parent = nullptr);
    ~PlacesPane() override;

    Place current() const;
    /// Makes a place the current one; everything has no row, so that none is current then.
    void setCurrent(const Place& place);
    PlaceMemory& memory() { return *mMemory; }
    /// Shows the catalogs that the current filter lets through.
    void applyFilter();
    /// The logos of the makers, which stand beside their catalogs.
    MakerLogos& logos();
    /// The catalogs that a filter can name. Waits until all are read; events are handled meanwhile.
    std::vector<FilterEditor::Database> databases();

Q_SIGNALS:
    /// The user went to a place.
    void chosen(const Place& place);
    /// The user dropped items on one of the own libraries.
    void itemsDropped(const std::vector<ItemDrag::Item>& items, const Place& target);
    void newLibraryAsked();
    /// The user wants to know what can be done with the current place.
    void menuAsked(const QPoint& globalPosition);

private:
    void buildTree();
    QWidget* newLibraryButton();
    void chooseCurrent();
    void showListCounts();
    void openNewCategories();

    LibraryContent& mContent;
    const UserLists& mLists;
    const LibraryNews& mNews;
    PlacesModel* mModel;
    QTreeView* mTree;
    PlaceMemory* mMemory;
    Place mLast;                         ///< the place that was told last
    std::vector<int> mEmpty{0, 1, 2, 3}; ///< categories that hold no catalog
};
