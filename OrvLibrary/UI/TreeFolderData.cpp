#include "OrvLibrary/UI/TreeFolderData.h"

#include "OrvLibrary/host/FileUtils.h"

namespace Library {

TreeFolderData::TreeFolderData(const fileString& path) : mDatabasePath(path)
{
    setFlags(flags() | Qt::ItemIsDropEnabled);
}

TreeFolderData::TreeFolderData(long long id, const fileString& path) : TreeData(id), mDatabasePath(path)
{
    setFlags(flags() | Qt::ItemIsDropEnabled);
}

TreeFolderData::TreeFolderData(long long id, const fileString& path, const std::string& name)
    : TreeFolderData(id, path)
{
    setItemName(name);
}

TreeFolderData::~TreeFolderData() = default;

const fileString& TreeFolderData::getDatabasePath() const
{
    return mDatabasePath;
}

bool TreeFolderData::isValid() const
{
    return FileUtils::pathExists(mDatabasePath);
}

bool TreeFolderData::isLeaf() const
{
    return false;
}

} // namespace Library
