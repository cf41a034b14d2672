#include "apps/orv-browser/WindowMenus.h"

#include <QAction>
#include <QKeySequence>
#include <QMainWindow>
#include <QMenu>
#include <QMenuBar>
#include <QUndoStack>

WindowMenus::WindowMenus(QMainWindow& window, QUndoStack& changes) : QObject(&window)
{
    QMenu* file = window.menuBar()->addMenu(tr("&File"));
    importArchive = add(*file, tr("&Import archive…"), "importArchive", QKeySequence::Open);
    file->addSeparator();
    preferences = add(*file, tr("&Preferences…"), "editPreferences", {Qt::CTRL + Qt::Key_Comma});
    file->addSeparator();
    quit = add(*file, tr("&Quit"), "quit", QKeySequence::Quit);

    mItemMenu = window.menuBar()->addMenu(tr("&Edit"));
    undo = changes.createUndoAction(this, tr("&Undo"));
    undo->setObjectName(QStringLiteral("undo"));
    undo->setShortcut(QKeySequence::Undo);
    redo = changes.createRedoAction(this, tr("&Redo"));
    redo->setObjectName(QStringLiteral("redo"));
    redo->setShortcuts({Qt::CTRL + Qt::SHIFT + Qt::Key_Z, Qt::CTRL + Qt::Key_Y}); // people know either
    mItemMenu->addAction(undo);
    mItemMenu->addAction(redo);
    mItemMenu->addSeparator();
    favourite = add(*mItemMenu, tr("&Favourite"), "toggleFavourite", {Qt::CTRL + Qt::Key_D});
    favourite->setCheckable(true);
    showInFolder = add(*mItemMenu, tr("Show in f&older"), "showInFolder", {Qt::CTRL + Qt::Key_Return});
    mItemMenu->addSeparator();
    copyTo = mItemMenu->addMenu(tr("&Copy to"));
    copyTo->setObjectName(QStringLiteral("copyTo"));
    rename = add(*mItemMenu, tr("Re&name…"), "rename", {Qt::Key_F2});
    remove = add(*mItemMenu, tr("De&lete"), "remove", QKeySequence::Delete);
    mItemMenu->setToolTipsVisible(true); // which say why something cannot be done

    QMenu* view = window.menuBar()->addMenu(tr("&View"));
    search = add(*view, tr("&Search"), "search", QKeySequence::Find);
    showGrid = add(*view, tr("&Pictures"), "viewPictures", {Qt::CTRL + Qt::Key_1});
    showList = add(*view, tr("&List"), "viewList", {Qt::CTRL + Qt::Key_2});
    showDetails = add(*view, tr("&Details"), "viewDetails", {Qt::CTRL + Qt::Key_I});
    showDetails->setCheckable(true);
    showDetails->setChecked(true);
    showActivities = add(*view, tr("&Activities"), "viewActivities", {Qt::CTRL + Qt::Key_J});
    showActivities->setCheckable(true);
    showActivities->setEnabled(false); // until there are some

    QMenu* library = window.menuBar()->addMenu(tr("&Library"));
    checkForUpdates = add(*library, tr("Check for &updates"), "checkForUpdates", {Qt::Key_F5});
    cancelUpdate = add(*library, tr("&Cancel the update"), "cancelUpdate", {Qt::CTRL + Qt::Key_Period});
    cancelUpdate->setEnabled(false);
    refreshManufacturers = add(*library, tr("Refresh &manufacturers…"), "refreshManufacturers", {});
    newLibrary = add(*library, tr("&New library…"), "newLibrary", QKeySequence::New);
    library->addSeparator();
    markSeen = add(*library, tr("Mark all as &seen"), "markAllSeen", {});
    editFilters = add(*library, tr("Edit &filters…"), "editFilters", {});
    showLog = add(*library, tr("Show the &log"), "showLog", {Qt::CTRL + Qt::Key_L});

    QMenu* help = window.menuBar()->addMenu(tr("&Help"));
    shortcuts = add(*help, tr("&Keys…"), "showKeys", QKeySequence::HelpContents);
}

QAction* WindowMenus::add(QMenu& menu, const QString& text, const char* name, const QKeySequence& key)
{
    QAction* action = menu.addAction(text);
    action->setObjectName(QLatin1String(name));
    action->setShortcut(key);
    return action;
}
