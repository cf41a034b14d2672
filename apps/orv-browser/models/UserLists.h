#pragma once

#include <cstdint>
#include <optional>
#include <utility>
#include <vector>

#include <QObject>
#include <QString>
#include <QTimer>

#include "OrvLibrary/host/fileString.h"
#include "apps/orv-browser/models/ListFile.h"

class ItemIndex;

/// The user's own lists of items: the favourites, and the items that were looked at last; and which news the
/// user has seen. They are kept in a ListFile. Lives on the interface thread.
class UserLists : public QObject
{
    Q_OBJECT

public:
    using Key = std::pair<fileString, long long>; ///< the catalog's file and the item's id

    /// Reads the file; a missing or damaged one means empty lists.
    explicit UserLists(const fileString& root, QObject* parent = nullptr);
    ~UserLists() override;

    /// Favourites that are installed, sorted.
    std::vector<Key> favourites() const;
    bool isFavourite(const Key& key) const;
    /// Makes items favourites, or no favourites any more, and saves the list.
    /// @param names the items' names, in the same order
    void setFavourites(const std::vector<Key>& keys, const std::vector<QString>& names, bool areFavourites);
    /// Items that are installed, the last one first.
    std::vector<Key> recent() const;
    void addRecent(const Key& key, const QString& name);

    /// Follows a catalog that was given another name, and an item.
    void moveCatalog(const fileString& from, const fileString& to);
    void renameItem(const Key& key, const QString& name);

    /// The number of the update up to which the user has seen what is new; none before the window first saw
    /// a catalog.
    const std::optional<std::int64_t>& seenRun() const { return mLists.seenRun; }
    void setSeenRun(std::int64_t run);

    /// Finds the items again in catalogs that were replaced: ids may stand for other items there, but an item
    /// keeps its name. Items that cannot be found wait in the lists for their catalog to come back.
    void followIndex(const ItemIndex& index);

Q_SIGNALS:
    void favouritesChanged();
    void recentChanged();
    /// The lists could not be saved. They stay as they are here, and the next save takes them along.
    /// @param reason for people
    void notSaved(const QString& reason);

private:
    using Entries = ListFile::Entries;

    void save();
    static bool follow(Entries& entries, const ItemIndex& index);
    static std::vector<Key> installed(const Entries& entries);

    ListFile mFile;
    ListFile::Lists mLists;
    QTimer mSaveLater;
};
