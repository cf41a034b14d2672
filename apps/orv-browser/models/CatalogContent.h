#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include <QString>
#include <QStringList>

#include "OrvLibrary/host/fileString.h"

class CatalogDatabase;

/// The content of one catalog that the window lists and searches: its folders and items with their
/// names, but no pictures. It is read once, off the interface thread, and never changes, so that threads
/// share it.
class CatalogContent
{
public:
    /// A folder. Folders stand in the order in which a tree shows them, each before its subfolders.
    struct Folder
    {
        long long id = -1;
        int parent = -1; ///< position; -1 at the top
        int end = 0;     ///< position after the last folder below this one
        std::string name;
    };
    /// An item. Items stand in the order of their ids.
    struct Item
    {
        long long id = -1;
        std::uint32_t texts = 0;  ///< where its texts begin
        std::uint32_t folded = 0; ///< where its folded text begins
        std::int32_t folder = -1; ///< position; -1 when its folder is missing
        std::int32_t style = kNone;
        std::int32_t maker = kNone;
    };
    static constexpr std::int32_t kNone = -1;

    /// Reads a catalog. A catalog that cannot be read is empty and says why in `problem`. Never throws.
    /// @param category its row among the categories, see `LibraryContent`
    static std::shared_ptr<const CatalogContent> read(int category, const fileString& database);

    int category() const { return mCategory; }
    const fileString& database() const { return mDatabase; }
    /// The library database id, by which filters name the catalog; may be empty.
    const std::string& id() const { return mId; }
    /// The version that the catalog tells of itself; may be empty.
    const std::string& version() const { return mVersion; }
    /// The catalog's name for people.
    QString name() const;
    /// Why the catalog cannot be read, for people; empty for a sound one.
    const QString& problem() const { return mProblem; }

    const std::vector<Folder>& folders() const { return mFolders; }
    const std::vector<Item>& items() const { return mItems; }
    /// The position of a folder by its id; -1 when there is none.
    int folderAt(long long id) const;
    /// The position of an item by its id; -1 when there is none.
    int itemAt(long long id) const;
    /// How many items a folder and all folders below it hold; the whole catalog for -1.
    int itemCount(int folder) const;
    /// The maker of most of its items, which stands for a manufacturer's catalog; `kNone` where they have
    /// none.
    std::int32_t maker() const { return mMaker; }
    /// Names of the folders from the top down to this one.
    QStringList pathOf(int folder) const;

    QString itemName(const Item& item) const;
    std::string paneName(const Item& item) const;
    /// The item's name and pane name as a search compares them.
    std::string_view foldedText(const Item& item) const;

private:
    struct RawFolder;

    void readFrom(const CatalogDatabase& database);
    void orderFolders(std::vector<RawFolder> raw);
    void appendFolders(const std::vector<RawFolder>& raw, std::size_t first);
    void readItems(const CatalogDatabase& database);
    void countItems();
    void countMakers();
    std::uint32_t keep(const std::string& text);

    int mCategory = 0;
    fileString mDatabase;
    std::string mId;
    std::string mVersion;
    QString mProblem;
    std::int32_t mMaker = kNone;
    std::vector<Folder> mFolders;
    std::vector<std::pair<long long, int>> mFolderIds; ///< id and position, sorted by id
    std::vector<int>
        mItemsBefore; ///< by position: items in the folders before it; one entry more than folders
    std::vector<Item> mItems;
    std::string mTexts; ///< the texts of all items, each ended by a zero byte
};
