#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#include "OrvHost/OrvHostExport.h"
#include "OrvLibrary/host/ProgressSubject.h"
#include "OrvLibrary/host/fileString.h"

namespace OrvHost {

class FilesProgress;

/// Checks what is installed: whether catalogs match their tags, whether archives are sound, and whether a
/// time is in the future. It reads the folders of the installed path service. Only `forget` changes
/// something: hash lines. One object belongs to one thread.
class ORVHOST_EXPORT LibraryHealth
{
public:
    /// A damaged catalog or archive.
    struct Damage
    {
        std::string name;   ///< file name
        std::string text;   ///< the problem, for people
        bool isListed;      ///< whether it has a hash line, so that an update can bring it back
        fileString archive; ///< the path, if it is a damaged archive; otherwise empty
    };

    /// Compares core catalogs with their tags, if a tag is a SHA-1. The tags of bonus and manufacturer
    /// catalogs are those of the packed archive, so they cannot be compared.
    void checkCoreCatalogs();
    /// Reads every member of the archives of referenced files and of textures.
    void checkArchives();
    /// Does both.
    /// @param progress may be null; told the name of each file and the bytes of all on the disk, and asked
    /// for a cancel after every 8 MB at the latest. A label, "checking", and the total come from 8 MB on
    /// @throws ZipUtils::Cancelled; what was found until then stays
    void checkAll(const std::shared_ptr<ProgressSubject>& progress);

    /// The problem of a core catalog that has this tag in the hash file. Empty if it is sound, or if the tag
    /// is not a SHA-1.
    static std::string catalogDamage(const fileString& catalog, const std::string& tag);
    /// The problem of an archive; empty if it is sound.
    static std::string archiveDamage(const fileString& archive);

    /// The number of catalogs and archives checked.
    std::size_t checkedCount() const { return mChecked; }
    const std::vector<Damage>& damages() const { return mDamages; }

    /// Removes the core hash line of a file, so that the next update downloads it again. An archive that came
    /// with a bonus or manufacturer catalog has no line; for it, the line of the catalog is removed.
    /// @return false if there is no line, or if the hash file cannot be written; it is then unchanged
    static bool forget(const std::string& name);

    /// Files and records with a time in the future, each with a text. Until that time, nothing newer replaces
    /// them.
    static std::vector<Damage> futureStamps();

    /// Catalogs and archives that have a hash line but no file.
    static std::vector<Damage> missingFiles();
    /// The leftovers of earlier updates in the temporary folder, with their size but without names.
    static std::vector<Damage> leftOvers();

private:
    void checkArchivesIn(const fileString& folder, bool areReferenced);
    void checkCoreCatalogs(FilesProgress& progress);
    void note(const fileString& file, const std::string& text, bool isListed);
    void checkArchivesIn(const fileString& folder, bool areReferenced, FilesProgress& progress);

    std::size_t mChecked = 0;
    std::vector<Damage> mDamages;
};

} // namespace OrvHost
