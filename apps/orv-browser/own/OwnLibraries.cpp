// A step and the step back share what they know of each other: ids, kept items, files in the bin. It is only
// touched in the background, where one step follows the other.
#include "apps/orv-browser/own/OwnLibraries.h"

#include <map>
#include <stdexcept>
#include <utility>

#include <QUndoStack>

#include "OrvLibrary/host/FileUtils.h"
#include "apps/orv-browser/models/Background.h"
#include "apps/orv-browser/models/UserLists.h"
#include "apps/orv-browser/own/LibraryName.h"
#include "apps/orv-browser/own/OwnCatalog.h"
#include "apps/orv-browser/own/OwnFiles.h"

namespace {

using Kept = std::map<fileString, std::shared_ptr<OwnCatalog::KeptItems>>;

/// The name may have been taken since it was chosen.
void expectFree(const QString& name, const QString& former = {})
{
    QStringList taken = LibraryName::installed();
    taken.removeAll(former);
    const QString problem = LibraryName::problemOf(name, taken);
    if (!problem.isEmpty())
        throw std::runtime_error(problem.toStdString());
}

void createWith(const fileString& database, const std::vector<ItemDrag::Item>& items)
{
    OwnCatalog::create(database);
    try {
        if (!items.empty())
            OwnCatalog::copyItems(database, -1, items);
    } catch (...) {
        FileUtils::removePath(database, 1);
        throw;
    }
}

OwnLibraries::Failure notRenamed(const QString& name)
{
    return [name](const QString& why) { return OwnLibraries::tr("%1 was not renamed: %2").arg(name, why); };
}

} // namespace

OwnLibraries::OwnLibraries(fileString root, UserLists& lists, QUndoStack& undo, QObject* parent)
    : QObject(parent),
      mRoot(std::move(root)),
      mLists(lists),
      mUndo(undo),
      mIsCancelled(std::make_shared<std::atomic<bool>>(false))
{
    mPool.setMaxThreadCount(1);
}

OwnLibraries::~OwnLibraries()
{
    *mIsCancelled = true; // whoever waits for the lock stops
    mPool.clear();
    mPool.waitForDone();
}

void OwnLibraries::take(const OwnStep& step, const Failure& failure, std::function<void(bool)> ended)
{
    Background::run(
        mPool, this,
        [root = mRoot, work = step.work, cancelled = mIsCancelled] {
            try {
                const OrvHost::HostLock lock = OwnFiles::lock(root, [&] { return cancelled->load(); });
                work();
                return QString();
            } catch (const std::exception& error) {
                return QString::fromUtf8(error.what());
            }
        },
        [this, step, failure, ended = std::move(ended)](const QString& problem) {
            ended(problem.isEmpty());
            if (problem.isEmpty())
                step.done();
            Q_EMIT said(problem.isEmpty() ? step.told : failure(problem));
        });
}

void OwnLibraries::make(const QString& text, const OwnStep& forward, const OwnStep& back,
                        const Failure& failure)
{
    take(forward, failure, [=](bool isDone) {
        if (isDone)
            mUndo.push(new OwnCommand(*this, text, forward, back));
    });
}

std::function<void()> OwnLibraries::tells(const fileString& database)
{
    return [this, database] { Q_EMIT changed(database); };
}

void OwnLibraries::create(const QString& name, const std::vector<ItemDrag::Item>& items)
{
    const fileString database = LibraryName::databaseOf(name);
    const auto binned = std::make_shared<OwnFiles::Binned>();
    const auto forward = [=] {
        if (!binned->empty()) {
            OwnFiles::takeBack(std::exchange(*binned, {}));
            return;
        }
        expectFree(name);
        createWith(database, items);
    };
    const auto show = [this, database] {
        Q_EMIT changed(database);
        Q_EMIT created(database);
    };
    make(tr("New library"), {forward, show, tr("%1 is there.").arg(name)},
         {[=] { *binned = OwnFiles::moveToBin(database); }, tells(database),
          tr("%1 is in the bin.").arg(name)},
         [=](const QString& why) { return tr("%1 was not made: %2").arg(name, why); });
}

void OwnLibraries::remove(const fileString& database)
{
    const QString name = LibraryName::nameOf(database);
    const auto binned = std::make_shared<OwnFiles::Binned>();
    make(tr("Delete %1").arg(name),
         {[=] { *binned = OwnFiles::moveToBin(database); }, tells(database),
          tr("%1 is in the bin. Undo brings it back.").arg(name)},
         {[=] { OwnFiles::takeBack(*binned); }, tells(database), tr("%1 is back.").arg(name)},
         [=](const QString& why) { return tr("%1 was not deleted: %2").arg(name, why); });
}

OwnStep OwnLibraries::renaming(const fileString& from, const fileString& to)
{
    const QString former = LibraryName::nameOf(from);
    const QString name = LibraryName::nameOf(to);
    return {[=] {
                expectFree(name, former);
                OwnFiles::rename(from, to);
            },
            [=] {
                mLists.moveCatalog(from, to);
                Q_EMIT moved(from, to);
            },
            tr("%1 is now called %2.").arg(former, name)};
}

void OwnLibraries::rename(const fileString& database, const QString& name)
{
    const fileString next = LibraryName::databaseOf(name);
    make(tr("Rename"), renaming(database, next), renaming(next, database),
         notRenamed(LibraryName::nameOf(database)));
}

void OwnLibraries::copy(const std::vector<ItemDrag::Item>& items, const Place& target)
{
    const fileString database = target.database;
    const QString name = LibraryName::nameOf(database);
    const auto copies = std::make_shared<std::shared_ptr<OwnCatalog::KeptItems>>();
    const auto forward = [=, folder = target.folder] {
        if (*copies) // they were taken back
            OwnCatalog::putBack(database, **copies);
        else
            *copies = std::make_shared<OwnCatalog::KeptItems>(OwnCatalog::copyItems(database, folder, items));
    };
    make(
        tr("Copy"), {forward, tells(database), tr("Copied to %1.").arg(name)},
        {[=] { OwnCatalog::takeOut(database, **copies); }, tells(database), tr("The copies are gone again.")},
        [=](const QString& why) { return tr("Not copied to %1: %2").arg(name, why); });
}

void OwnLibraries::removeItems(const std::vector<ItemDrag::Item>& items)
{
    std::map<fileString, std::vector<ItemDrag::Item>> byLibrary;
    for (const ItemDrag::Item& item : items)
        byLibrary[item.database].push_back(item);
    for (const auto& [library, gone] : byLibrary) {
        const fileString database = library;
        std::vector<long long> ids;
        for (const ItemDrag::Item& item : gone)
            ids.push_back(item.id);
        const auto kept = std::make_shared<OwnCatalog::KeptItems>(ids);
        const int count = static_cast<int>(ids.size());
        make(tr("Delete %Ln item(s)", nullptr, count),
             {[=] { OwnCatalog::takeOut(database, *kept); }, tells(database),
              tr("%Ln item(s) deleted. Undo brings them back.", nullptr, count)},
             {[=] { OwnCatalog::putBack(database, *kept); }, tells(database),
              tr("%Ln item(s) are back.", nullptr, count)},
             [](const QString& why) { return tr("Not deleted: %1").arg(why); });
    }
}

void OwnLibraries::renameItem(const ItemDrag::Item& item, const QString& name)
{
    const auto renaming = [this, item](const QString& from, const QString& to) -> OwnStep {
        return {[=] { OwnCatalog::rename(item.database, OwnCatalog::Entry::Item, item.id, to); },
                [=] {
                    mLists.renameItem({item.database, item.id}, to);
                    Q_EMIT changed(item.database);
                    Q_EMIT itemRenamed(item.database, item.id);
                },
                tr("%1 is now called %2.").arg(from, to)};
    };
    make(tr("Rename"), renaming(item.name, name), renaming(name, item.name), notRenamed(item.name));
}

void OwnLibraries::renameFolder(const Place& folder, const QString& former, const QString& name)
{
    const auto renaming = [this, folder](const QString& from, const QString& to) -> OwnStep {
        return {[=] { OwnCatalog::rename(folder.database, OwnCatalog::Entry::Folder, folder.folder, to); },
                tells(folder.database), tr("%1 is now called %2.").arg(from, to)};
    };
    make(tr("Rename"), renaming(former, name), renaming(name, former), notRenamed(former));
}
