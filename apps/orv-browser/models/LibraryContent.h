#pragma once

#include <map>
#include <memory>
#include <set>
#include <vector>

#include <QObject>
#include <QThreadPool>

#include "OrvLibrary/host/fileString.h"
#include "apps/orv-browser/models/ItemIndex.h"

/// The installed catalogs in the four well-known folders, and the index of their items. The index is read in
/// the background, and a catalog whose file is replaced is read again. Lives on the interface
/// thread.
class LibraryContent : public QObject
{
    Q_OBJECT

public:
    /// The categories, in the order in which the window shows them.
    static constexpr int kCategories = 4;
    static constexpr int kManufacturerCategory = 2;
    static constexpr int kUserCategory = 3;

    /// A catalog file that is installed, whether it was read already or not.
    struct Catalog
    {
        int category;
        fileString database;
        QString stamp = {}; ///< of the file when it was looked at; see `FileStamp`
    };

    explicit LibraryContent(QObject* parent = nullptr);
    /// Waits for the reading that is under way.
    ~LibraryContent() override;

    /// Looks into the folders again, and reads what came or was changed. Catalogs that stayed as they were
    /// are not read again.
    void refresh();
    /// Reads one catalog again, because its file was replaced or changed.
    void reload(const fileString& database);

    const std::vector<Catalog>& catalogs() const { return mCatalogs; }
    /// The items; never null. It may be older than the files while `isReading`.
    const std::shared_ptr<const ItemIndex>& index() const { return mIndex; }
    bool isReading() const { return mIsReading || !mUnread.empty(); }

    /// The folder of a category.
    static fileString folderOf(int category);

Q_SIGNALS:
    /// Catalogs have come or gone; `index` does not know of them yet.
    void catalogsChanged();
    /// A catalog file was replaced or changed; `index` does not know of it yet.
    void catalogChanged(const fileString& database);
    /// A new index is there.
    void indexChanged();

private:
    bool noteChanges(const std::vector<Catalog>& found);
    void read();
    void take(std::shared_ptr<const ItemIndex> index);

    QThreadPool mPool;
    std::vector<Catalog> mCatalogs;
    std::set<fileString> mUnread; ///< catalogs that the index does not hold as they are now
    std::shared_ptr<const ItemIndex> mIndex;
    bool mIsReading = false;
};
