#pragma once

#include <string>
#include <vector>

#include "OrvHost/OrvHostExport.h"
#include "OrvLibrary/host/fileString.h"

namespace OrvHost {

/// The kinds of files that an update replaces.
enum class CatalogCategory
{
    Core,
    Bonus,
    Manufacturer,
    Referenced ///< archives of referenced files
};

/// Where one catalog, or one archive of referenced files, has its place, whether a file is there or not. A
/// plain value. The functions need the host's services and may be called from any thread.
struct ORVHOST_EXPORT CatalogPlace
{
    CatalogCategory category = CatalogCategory::Core;
    std::string name; ///< file name with its extension, as the file system has it

    /// "core", "bonus", "manufacturer" or "referenced".
    std::string categoryName() const;
    /// "core/Doors.orvlib": unlike the name alone, it stands for one place only.
    std::string key() const { return categoryName() + "/" + name; }
    /// The folder of the category, with its final separator.
    fileString folder() const;
    fileString path() const { return folder() + fileString(name); }
    /// The folder whose hash file has the line of this file: archives of referenced files stand in that of
    /// the core.
    fileString hashFolder() const;
    /// The tag in the hash file; empty when there is none, and when the file cannot be read.
    std::string tag() const;
    /// The same, for a caller that must not take a tag that cannot be read for none.
    /// @throws std::runtime_error when the hash file is there and cannot be read
    std::string tagOrThrow() const;
    /// The archive of referenced files that a bonus or manufacturer catalog brings along, "Garden.zip" of
    /// "Garden.orvlib". An empty name for other places.
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

/// The place of a full path; an empty name when the path lies in no category's folder.
ORVHOST_EXPORT CatalogPlace ofPath(const fileString& path);
/// The place of a key such as "core/Doors.orvlib"; an empty name when it is none.
ORVHOST_EXPORT CatalogPlace ofKey(const std::string& key);
/// The files that are there: core, bonus and manufacturer catalogs, archives of referenced files, each kind
/// in the order of the names.
ORVHOST_EXPORT std::vector<CatalogPlace> installed();
/// Finds the one place that a user means: by its key, by the file name, or by the name without extension.
/// @throws std::runtime_error with a text for people when there is none, or more than one
ORVHOST_EXPORT CatalogPlace find(const std::string& name, const std::vector<CatalogPlace>& places);

} // namespace CatalogPlaces

} // namespace OrvHost
