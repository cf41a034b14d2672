#pragma once

#include "OrvLibrary/LibraryCategory.h"
#include "OrvLibrary/OrvLibraryExport.h"
#include "OrvLibrary/UI/TreeData.h"
#include "OrvLibrary/host/fileString.h"

namespace Library {

/// A node for one kind of library content. The catalogs of this kind are its children.
class ORVLIBRARY_EXPORT LibraryCategoryData : public TreeData
{
public:
    LibraryCategoryData(long long id, LibraryCategory category, const fileString& path);
    LibraryCategoryData(LibraryCategory category, const fileString& path);
    ~LibraryCategoryData() override;

    const fileString& getDatabasePath() const override;
    /// Whether the path exists.
    bool isValid() const override;
    bool isLeaf() const override;

    LibraryCategory getCategory() const { return mCategory; }

private:
    fileString mDatabasePath;
    LibraryCategory mCategory;
};

} // namespace Library
