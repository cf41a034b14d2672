#pragma once

#include <functional>
#include <vector>

#include <QObject>

#include "apps/orv-browser/models/ItemDrag.h"
#include "apps/orv-browser/own/OwnSubject.h"

class GalleryPane;
class LibraryContent;
class OwnLibraries;
class PlacesPane;
class QAbstractItemView;
class QMainWindow;
class QMenu;
class QWidget;
class WindowMenus;

/// Lets the user change libraries of their own: knows what "Rename" and "Delete" mean where the keyboard is,
/// says why they mean nothing there, and asks for names. Lives as long as the window.
class OwnActions : public QObject
{
    Q_OBJECT

public:
    /// The parts of the window that it looks at; they live as long.
    struct Parts
    {
        QMainWindow& window;
        WindowMenus& menus;
        LibraryContent& content;
        PlacesPane& places;
        GalleryPane& gallery;
    };

    OwnActions(const Parts& parts, OwnLibraries& libraries);

    /// Call it when the selection, or the place where the user is, has changed.
    void update();
    /// Asks for the name of a new library.
    /// @param withItems whether the selected items are copied to it
    void create(bool withItems);

Q_SIGNALS:
    /// Why a key does nothing, for people.
    void said(const QString& sentence);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    OwnSubject subject() const;
    std::vector<ItemDrag::Item> selectedItems() const;
    void follow(QWidget* focus);
    void selectRenamed();
    void fillCopyMenu();
    void showPlaceMenu(const QPoint& globalPosition);
    void rename();
    void remove();
    QString ask(const QString& title, const QString& question, const QString& name,
                const std::function<QString(const QString&)>& problemOf) const;
    void renameLibrary(const Place& place);
    void renameFolder(const Place& place);
    void renameItem(const ItemDrag::Item& item);

    Parts mParts;
    OwnLibraries& mLibraries;
    bool mIsInPlaces = false; ///< where the keyboard was last
    ItemDrag::Item mRenamed;  ///< to be selected again once it is read; none without an id
};
