#pragma once

#include <vector>

#include <QObject>
#include <QTimer>
#include <QUndoStack>

#include "apps/orv-browser/models/ItemDrag.h"
#include "apps/orv-browser/models/UserLists.h"

class GalleryModel;

/// The user's actions on items: favourites, and the one item that the rest of the host knows as chosen.
/// Actions that can be undone go onto the undo stack. Lives on the interface thread.
class ItemActions : public QObject
{
    Q_OBJECT

public:
    /// @param model and lists outlive the object
    ItemActions(const GalleryModel& model, UserLists& lists, QObject* parent);

    QUndoStack& undoStack() { return mUndo; }
    /// Tells the host's chooser of the selection: one item, or none.
    /// @param rows of the selected items
    void choose(const std::vector<int>& rows);
    /// Makes the items favourites, or no favourites any more; can be undone.
    void setFavourites(const std::vector<int>& rows, bool areFavourites);
    /// Makes them favourites unless all are.
    void toggleFavourites(const std::vector<int>& rows);
    bool areFavourites(const std::vector<int>& rows) const;
    /// Notes an item as looked at.
    void noteRecent(const ItemDrag::Item& item);

private:
    class FavouritesChange;

    const GalleryModel& mModel;
    UserLists& mLists;
    QUndoStack mUndo;
    QTimer mLook; ///< an item counts as looked at once it has been selected for a while
    ItemDrag::Item mLooked;
};
