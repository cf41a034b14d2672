#include "apps/orv-browser/ItemActions.h"

#include <algorithm>
#include <utility>

#include <QUndoCommand>

#include "OrvLibrary/Utility/Chooser.h"
#include "apps/orv-browser/gallery/GalleryModel.h"
#include "apps/orv-browser/models/Background.h"
#include "apps/orv-browser/models/CatalogDatabase.h"

namespace {

constexpr int kLookMilliseconds = 1000;

} // namespace

/// Making items favourites, or no favourites any more.
class ItemActions::FavouritesChange : public QUndoCommand
{
public:
    FavouritesChange(UserLists& lists, std::vector<UserLists::Key> keys, std::vector<QString> names,
                     bool areFavourites)
        : QUndoCommand(areFavourites ? ItemActions::tr("Add to favourites")
                                     : ItemActions::tr("Remove from favourites")),
          mLists(lists),
          mKeys(std::move(keys)),
          mNames(std::move(names)),
          mAreFavourites(areFavourites)
    {
    }

    void redo() override { mLists.setFavourites(mKeys, mNames, mAreFavourites); }
    void undo() override { mLists.setFavourites(mKeys, mNames, !mAreFavourites); }

private:
    UserLists& mLists;
    std::vector<UserLists::Key> mKeys;
    std::vector<QString> mNames;
    bool mAreFavourites;
};

/// A copy that was made; to make it again after it was undone copies anew.
class ItemActions::Copy : public QUndoCommand
{
public:
    Copy(ItemActions& actions, fileString database, std::vector<long long> items)
        : QUndoCommand(ItemActions::tr("Copy")),
          mActions(actions),
          mDatabase(std::move(database)),
          mItems(std::move(items))
    {
    }

    void redo() override {} // it is done before it comes onto the stack
    void undo() override
    {
        mActions.undoCopy(mDatabase, mItems);
        setObsolete(true);
    }

private:
    ItemActions& mActions;
    fileString mDatabase;
    std::vector<long long> mItems;
};

/// What became of a copying.
struct ItemActions::Copied
{
    std::vector<long long> items; ///< ids of the copies
    QString problem;              ///< why not all were copied
};

ItemActions::ItemActions(const GalleryModel& model, UserLists& lists, QObject* parent)
    : QObject(parent), mModel(model), mLists(lists)
{
    mPool.setMaxThreadCount(1);
    mLook.setSingleShot(true);
    mLook.setInterval(kLookMilliseconds);
    connect(&mLook, &QTimer::timeout, this, [this] { noteRecent(mLooked); });
}

ItemActions::~ItemActions()
{
    mPool.waitForDone();
}

void ItemActions::choose(const std::vector<int>& rows)
{
    mLook.stop();
    if (rows.size() != 1) {
        Library::Chooser::get()->clearData();
        return;
    }
    mLooked = mModel.itemAt(rows.front());
    Library::TreeItemData chosen(mLooked.id, mLooked.database, mLooked.name.toStdString());
    chosen.setSelectionPaneName(mModel.catalogAt(rows.front()).paneName(mModel.contentAt(rows.front())));
    Library::Chooser::get()->setData(chosen);
    mLook.start();
}

void ItemActions::noteRecent(const ItemDrag::Item& item)
{
    mLists.addRecent({item.database, item.id}, item.name);
}

bool ItemActions::areFavourites(const std::vector<int>& rows) const
{
    return !rows.empty() && std::all_of(rows.begin(), rows.end(), [this](int row) {
        return mModel.index(row, 0).data(GalleryModel::kFavouriteRole).toBool();
    });
}

void ItemActions::setFavourites(const std::vector<int>& rows, bool areFavourites)
{
    std::vector<UserLists::Key> keys;
    std::vector<QString> names;
    for (const int row : rows) {
        if (mModel.index(row, 0).data(GalleryModel::kFavouriteRole).toBool() == areFavourites)
            continue;
        const ItemDrag::Item item = mModel.itemAt(row);
        keys.emplace_back(item.database, item.id);
        names.push_back(item.name);
    }
    if (!keys.empty())
        mUndo.push(new FavouritesChange(mLists, std::move(keys), std::move(names), areFavourites));
}

void ItemActions::toggleFavourites(const std::vector<int>& rows)
{
    setFavourites(rows, !areFavourites(rows));
}

void ItemActions::copy(const std::vector<ItemDrag::Item>& items, const Place& target)
{
    const QString name = QString::fromStdString(target.database.stem().toNativeString());
    Background::run(
        mPool, this,
        [items, target] {
            Copied copied;
            try {
                for (const ItemDrag::Item& item : items)
                    copied.items.push_back(
                        CatalogDatabase::copyItem(item.database, item.id, target.database, target.folder));
            } catch (const std::exception& error) {
                copied.problem = QString::fromUtf8(error.what());
            }
            return copied;
        },
        [this, name, database = target.database](const Copied& copied) {
            if (!copied.items.empty())
                mUndo.push(new Copy(*this, database, copied.items));
            Q_EMIT libraryChanged(database, copied.problem.isEmpty()
                                                ? tr("Copied to %1.").arg(name)
                                                : tr("Not copied to %1: %2").arg(name, copied.problem));
        });
}

void ItemActions::undoCopy(const fileString& database, const std::vector<long long>& items)
{
    Background::run(
        mPool, this,
        [database, items] {
            try {
                CatalogDatabase::removeItems(database, items);
                return QString();
            } catch (const std::exception& error) {
                return QString::fromUtf8(error.what());
            }
        },
        [this, database](const QString& problem) {
            Q_EMIT libraryChanged(database, problem.isEmpty() ? tr("The copies are gone again.")
                                                              : tr("Not undone: %1").arg(problem));
        });
}
