#pragma once

#include <QObject>

class QAction;
class QMainWindow;
class QMenu;
class QUndoStack;

/// The menus of the window and what is in them. The classes that carry out an action connect to it. Lives as
/// long as the window.
class WindowMenus : public QObject
{
    Q_OBJECT

public:
    /// @param changes the ones that "Undo" takes back; outlives the menus
    WindowMenus(QMainWindow& window, QUndoStack& changes);

    QAction* importArchive;
    QAction* preferences;
    QAction* quit;
    QAction* checkForUpdates;
    QAction* cancelUpdate;
    QAction* refreshManufacturers;
    QAction* markSeen;
    QAction* editFilters;
    QAction* showLog;
    QAction* search;
    QAction* showGrid;
    QAction* showList;
    QAction* showDetails;    ///< checkable
    QAction* showActivities; ///< checkable
    QAction* undo;
    QAction* redo;
    QAction* favourite;
    QAction* showInFolder;
    QMenu* copyTo; ///< filled by whoever knows the libraries
    QAction* rename;
    QAction* remove;
    QAction* newLibrary;
    QAction* shortcuts;

    /// The actions on the selected items, as a menu at the pointer.
    QMenu* itemMenu() const { return mItemMenu; }

private:
    static QAction* add(QMenu& menu, const QString& text, const char* name, const QKeySequence& key);

    QMenu* mItemMenu;
};
