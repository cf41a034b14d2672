#include "OrvLibrary/UI/TreeCatalogData.h"

#include "OrvLibrary/host/FileUtils.h"

namespace Library {

LibraryCategoryData::LibraryCategoryData(long long id, LibraryCategory category, const fileString& path)
    : TreeData(id), mDatabasePath(path), mCategory(category)
{
}

LibraryCategoryData::LibraryCategoryData(LibraryCategory category, const fileString& path)
    : mDatabasePath(path), mCategory(category)
{
}

LibraryCategoryData::~LibraryCategoryData() = default;

const fileString& LibraryCategoryData::getDatabasePath() const
{
    return mDatabasePath;
}

bool LibraryCategoryData::isValid() const
{
    return FileUtils::pathExists(mDatabasePath);
}

bool LibraryCategoryData::isLeaf() const
{
    return false;
}

} // namespace Library
