#pragma once

#include <string>

#include "OrvLibrary/OrvLibraryExport.h"
#include "OrvLibrary/UI/TreeData.h"
#include "OrvLibrary/host/fileString.h"

namespace Library {

/// A folder in the browser's tree. Unlike other nodes, it accepts drops.
class ORVLIBRARY_EXPORT TreeFolderData : public TreeData
{
public:
    explicit TreeFolderData(const fileString& path);
    TreeFolderData(long long id, const fileString& path);
    /// @param name UTF-8
    TreeFolderData(long long id, const fileString& path, const std::string& name);
    ~TreeFolderData() override;

    const fileString& getDatabasePath() const override;
    /// Whether the database exists.
    bool isValid() const override;
    bool isLeaf() const override;

private:
    fileString mDatabasePath;
};

} // namespace Library
