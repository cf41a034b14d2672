#pragma once

#include <cstdint>
#include <optional>
#include <utility>
#include <vector>

#include <QJsonArray>
#include <QString>

#include "OrvLibrary/host/fileString.h"

/// "browser-lists.json" below the root: the user's own lists of items. Windows on the same root share it; a
/// save keeps what the others have changed meanwhile. Lives on the interface thread.
class ListFile
{
public:
    struct Entry
    {
        std::pair<fileString, long long> key; ///< the catalog's file and the item's id
        QString name;
        bool isInstalled = true;
    };
    using Entries = std::vector<Entry>;
    struct Lists
    {
        Entries favourites;
        Entries recent; ///< the last one first
        std::optional<std::int64_t> seenRun;
    };

    explicit ListFile(fileString root);

    /// The lists in the file; none of their items counts as installed yet. Empty lists if the file is missing
    /// or cannot be read; a save reads it again.
    Lists load();
    /// Makes the same changes in the file that were made in `lists` since the last load or save.
    /// @param lists has afterwards also what others have changed
    /// @throws std::runtime_error if the file cannot be read or written; it is then as it was
    void save(Lists& lists);

private:
    Lists read() const;
    Entries entriesOf(const QJsonArray& list) const;
    QJsonArray written(const Entries& entries) const;
    Entries merged(const Entries& ours, const Entries& former, const Entries& theirs) const;

    fileString mRoot;
    Lists mFormer; ///< as the file was when it was last read or written here
};
