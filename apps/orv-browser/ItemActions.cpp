#include "apps/orv-browser/ItemActions.h"

#include <algorithm>
#include <utility>

#include <QUndoCommand>

#include "OrvLibrary/Utility/Chooser.h"
#include "apps/orv-browser/gallery/GalleryModel.h"

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

ItemActions::ItemActions(const GalleryModel& model, UserLists& lists, QObject* parent)
    : QObject(parent), mModel(model), mLists(lists)
{
    mLook.setSingleShot(true);
    mLook.setInterval(kLookMilliseconds);
    connect(&mLook, &QTimer::timeout, this, [this] { noteRecent(mLooked); });
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
