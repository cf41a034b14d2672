#pragma once

#include <string>
#include <vector>

#include "OrvHost/OrvHostExport.h"
#include "OrvLibrary/host/fileString.h"

namespace OrvHost {

/// The kinds of files that an update may replace.
enum class CatalogCategory
{
    Core,
    Bonus,
    Manufacturer,
    Referenced ///< archives of referenced files
};

/// The place of one catalog or archive of referenced files, whether there is a file or not. A plain value.
/// The functions need the host's services and may be called from any thread.
struct ORVHOST_EXPORT CatalogPlace
{
    CatalogCategory category = CatalogCategory::Core;
    std::string name; ///< file name with its extension, as in the file system

    /// "core", "bonus", "manufacturer" or "referenced".
    std::string categoryName() const;
    /// Such as "core/Doors.orvlib". Unlike the name, it is unique.
    std::string key() const { return categoryName() + "/" + name; }
    /// The folder of the category, with a separator at the end.
    fileString folder() const;
    fileString path() const { return folder() + fileString(name); }
    /// The folder of the hash file that has this file's line. Archives of referenced files have theirs in the
    /// core folder.
    fileString hashFolder() const;
    /// The tag in the hash file; empty if there is none or the file cannot be read.
    std::string tag() const;
    /// The same, for callers for whom an unreadable tag is not a missing one.
    /// @throws std::runtime_error if the hash file exists and cannot be read
    std::string tagOrThrow() const;
    /// The archive of referenced files that comes with a bonus or manufacturer catalog: "Garden.zip" for
    /// "Garden.orvlib". For other places, the name is empty.
    CatalogPlace companion() const;

    bool operator==(const CatalogPlace& other) const
    {
        return category == other.category && name == other.name;
    }
    bool operator<(const CatalogPlace& other) const
    {
        return category != other.category ? category < other.category : name < other.name;
    }
};

namespace CatalogPlaces {

/// The place of a full path. The name is empty if the path is not in the folder of a category.
ORVHOST_EXPORT CatalogPlace ofPath(const fileString& path);
/// The place of a key such as "core/Doors.orvlib". The name is empty if the key is not valid.
ORVHOST_EXPORT CatalogPlace ofKey(const std::string& key);
/// All files that exist: core, bonus and manufacturer catalogs, then archives of referenced files, each kind
/// ordered by name.
ORVHOST_EXPORT std::vector<CatalogPlace> installed();
/// Finds the place that the user named by its key, its file name, or its name without extension.
/// @throws std::runtime_error with a text for people if there is no such place, or more than one
ORVHOST_EXPORT CatalogPlace find(const std::string& name, const std::vector<CatalogPlace>& places);

} // namespace CatalogPlaces

} // namespace OrvHost
