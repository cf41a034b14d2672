#pragma once

#include <atomic>
#include <functional>
#include <memory>
#include <vector>

#include <QObject>
#include <QThreadPool>

#include "OrvLibrary/host/fileString.h"
#include "apps/orv-browser/models/ItemDrag.h"
#include "apps/orv-browser/models/Place.h"
#include "apps/orv-browser/own/OwnCommand.h"

class QUndoStack;
class UserLists;

/// Makes, renames and removes the user's own libraries, and the items in them.
/// All of it runs in the background, one change after the other, under the lock that imports take; it can be
/// undone. Lives on the interface thread.
class OwnLibraries : public QObject
{
    Q_OBJECT

public:
    /// Makes a sentence for people of the reason why a step failed.
    using Failure = std::function<QString(const QString& why)>;

    /// @param lists follow what is renamed; outlive the object, as the stack does
    OwnLibraries(fileString root, UserLists& lists, QUndoStack& undo, QObject* parent);
    /// Waits for the change that is under way.
    ~OwnLibraries() override;

    /// Makes a library, with copies of items or empty.
    /// @param name checked by `LibraryName`
    void create(const QString& name, const std::vector<ItemDrag::Item>& items = {});
    void rename(const fileString& database, const QString& name);
    /// Moves a library to the bin.
    void remove(const fileString& database);
    /// @param target a library of the user's, or a folder in one
    void copy(const std::vector<ItemDrag::Item>& items, const Place& target);
    /// @param items of libraries of the user's
    void removeItems(const std::vector<ItemDrag::Item>& items);
    void renameItem(const ItemDrag::Item& item, const QString& name);
    void renameFolder(const Place& folder, const QString& former, const QString& name);

    /// Takes a step as soon as those before it are done.
    /// @param ended is told whether it was done
    void take(const OwnStep& step, const Failure& failure, std::function<void(bool)> ended);

Q_SIGNALS:
    /// A library has come or gone, or holds something else.
    void changed(const fileString& database);
    void created(const fileString& database);
    void moved(const fileString& from, const fileString& to);
    void itemRenamed(const fileString& database, long long item);
    /// How something ended, for people.
    void said(const QString& sentence);

private:
    void make(const QString& text, const OwnStep& forward, const OwnStep& back, const Failure& failure);
    OwnStep renaming(const fileString& from, const fileString& to);
    std::function<void()> tells(const fileString& database);

    fileString mRoot;
    UserLists& mLists;
    QUndoStack& mUndo;
    std::shared_ptr<std::atomic<bool>> mIsCancelled;
    QThreadPool mPool; ///< one thread, so that steps keep their order
};
