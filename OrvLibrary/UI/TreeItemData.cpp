#include "OrvLibrary/UI/TreeItemData.h"

#include "OrvLibrary/host/FileUtils.h"

namespace Library {

TreeItemData::TreeItemData() = default;

TreeItemData::TreeItemData(long long id, const fileString& path) : TreeData(id), mDatabasePath(path) {}

TreeItemData::TreeItemData(long long id, const fileString& path, const std::string& name)
    : TreeData(id), mDatabasePath(path)
{
    setItemName(name);
}

TreeItemData::TreeItemData(const TreeItemData& other) = default;
TreeItemData& TreeItemData::operator=(const TreeItemData& other) = default;
TreeItemData::~TreeItemData() = default;

const fileString& TreeItemData::getDatabasePath() const
{
    return mDatabasePath;
}

bool TreeItemData::isValid() const
{
    return getId() >= 0 && FileUtils::pathExists(mDatabasePath);
}

bool TreeItemData::isLeaf() const
{
    return true;
}

bool TreeItemData::operator==(const TreeItemData& rhs) const
{
    return TreeData::operator==(rhs) && mSelectionPaneName == rhs.mSelectionPaneName;
}

bool TreeItemDataLessThan::operator()(const TreeItemData& a, const TreeItemData& b) const
{
    if (a.getDatabasePath() != b.getDatabasePath())
        return a.getDatabasePath() < b.getDatabasePath();
    return a.getId() < b.getId();
}

} // namespace Library
