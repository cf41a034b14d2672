#pragma once

#include "OrvLibrary/OrvLibraryExport.h"
#include "OrvLibrary/host/fileString.h"

/// The host's folders. Every path ends with a separator. The folder need not exist, except for the temporary
/// folder. All operations may be called from any thread.
class ORVLIBRARY_EXPORT PathUtils
{
public:
    PathUtils();
    virtual ~PathUtils();
    PathUtils(const PathUtils&) = delete;
    PathUtils& operator=(const PathUtils&) = delete;

    /// User library databases; holds "errors.log".
    virtual fileString getUserLibraryDatabasePath() const = 0;
    /// Core catalogs, their "catalog_hash.txt", and "catalog_filters.json".
    virtual fileString getCoreLibraryDatabasePath() const = 0;
    virtual fileString getBonusLibraryDatabasePath() const = 0;
    virtual fileString getManufacturerLibraryPath() const = 0;
    /// "manufacturer_data.json" and the logo files.
    virtual fileString getManufacturerDataPath() const = 0;
    /// Archives of the files that core content refers to.
    virtual fileString getProprietaryLibraryReferencedFilesPath() const = 0;
    /// The user's texture archives.
    virtual fileString getUserTexturePath() const = 0;
    /// A private temporary folder. If it is missing, it is created with mode 0700.
    virtual fileString getTempPath() const = 0;

    /// The installed service. The default is a `RootPathUtils` on `RootPathUtils::defaultRoot()`, which is
    /// determined anew for each call.
    static PathUtils& getObject();
    /// Makes `getObject` return `service`, or the default if null. The caller keeps ownership.
    /// @return the former service; null if it was the default
    static PathUtils* install(PathUtils* service);
};

/// A path service with all folders in one root folder: "user/", "core/", "bonus/", "manufacturer/",
/// "manufacturer-data/", "referenced/", "textures/" and "temp/".
class ORVLIBRARY_EXPORT RootPathUtils : public PathUtils
{
public:
    /// @param root the root folder, with or without the final separator; it need not exist
    explicit RootPathUtils(const fileString& root);

    fileString getUserLibraryDatabasePath() const override;
    fileString getCoreLibraryDatabasePath() const override;
    fileString getBonusLibraryDatabasePath() const override;
    fileString getManufacturerLibraryPath() const override;
    fileString getManufacturerDataPath() const override;
    fileString getProprietaryLibraryReferencedFilesPath() const override;
    fileString getUserTexturePath() const override;
    fileString getTempPath() const override;

    /// The root, with its final separator.
    const fileString& root() const { return mRoot; }
    /// Creates the root and all missing folders.
    /// @param reason on failure, the folder and the system's message
    bool createFolders(std::string& reason) const;

    /// "$ORV_LIBRARY_ROOT"; if it is not set, "$XDG_DATA_HOME/orv-library" or "
    /// /.local/share/orv-library".
    static fileString defaultRoot();

private:
    fileString mRoot;
};
