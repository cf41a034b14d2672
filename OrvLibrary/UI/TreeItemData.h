#pragma once

#include <string>

#include "OrvLibrary/OrvLibraryExport.h"
#include "OrvLibrary/UI/TreeData.h"
#include "OrvLibrary/host/fileString.h"

namespace Library {

/// An object of a library, a leaf of the browser's tree. A plain value: copies have all texts and flags of
/// the model item, but no children and no place in a model.
class ORVLIBRARY_EXPORT TreeItemData : public TreeData
{
public:
    /// An empty item: no id, no database.
    TreeItemData();
    TreeItemData(long long id, const fileString& path);
    /// @param name UTF-8
    TreeItemData(long long id, const fileString& path, const std::string& name);
    TreeItemData(const TreeItemData& other);
    TreeItemData& operator=(const TreeItemData& other);
    ~TreeItemData() override;

    const fileString& getDatabasePath() const override;
    /// Whether the database exists and the id is valid.
    bool isValid() const override;
    bool isLeaf() const override;

    /// The item's name in the host's selection pane, UTF-8; empty by default.
    void setSelectionPaneName(const std::string& name) { mSelectionPaneName = name; }
    std::string getSelectionPaneName() const { return mSelectionPaneName; }

    /// Whether both are the same object with the same selection pane name. Name, image and type do not count.
    bool operator==(const TreeItemData& rhs) const;
    using TreeData::operator==;

private:
    fileString mDatabasePath;
    std::string mSelectionPaneName;
};

/// Orders items by database path, then by id, for ordered containers.
struct ORVLIBRARY_EXPORT TreeItemDataLessThan
{
    bool operator()(const TreeItemData& a, const TreeItemData& b) const;
};

} // namespace Library
