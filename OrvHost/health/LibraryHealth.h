#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "OrvHost/OrvHostExport.h"
#include "OrvLibrary/host/fileString.h"

namespace OrvHost {

/// Looks at what is installed: do catalogs match their tags, are archives sound, does a clock lie ahead. It
/// reads the well-known folders of the installed path service and changes nothing but hash lines, and those
/// only in `forget`. One object belongs to one thread.
class ORVHOST_EXPORT LibraryHealth
{
public:
    /// A catalog or archive that is not what it should be.
    struct Damage
    {
        std::string name;   ///< file name
        std::string text;   ///< what is wrong, for people
        bool isListed;      ///< it has a hash line, so that an update can bring it back
        fileString archive; ///< the path of a damaged archive; empty for anything else
    };

    /// Compares core catalogs with their tags where the tag is a SHA-1. The tags of bonus and manufacturer
    /// catalogs belong to the packed archive and say nothing of the unpacked file.
    void checkCoreCatalogs();
    /// Reads every member of the archives in the referenced files and the texture folder.
    void checkArchives();

    /// The damage of a core catalog whose hash line has this tag; empty for a sound one, and when the
    /// tag is no SHA-1.
    static std::string catalogDamage(const fileString& catalog, const std::string& tag);
    /// Why an archive cannot be read to its end; empty when it can.
    static std::string archiveDamage(const fileString& archive);

    /// Catalogs and archives that were compared.
    std::size_t checkedCount() const { return mChecked; }
    const std::vector<Damage>& damages() const { return mDamages; }

    /// Removes the core hash line of a file, so that the next update fetches it again. An archive that came
    /// with a bonus or manufacturer catalog has no line: that of the catalog goes.
    /// @return false when there is none, or the hash file cannot be written; it is then as it was
    static bool forget(const std::string& name);

    /// Files and records whose time lies in the future, each with a text. Until then nothing newer replaces
    /// them.
    static std::vector<Damage> futureStamps();

    /// Catalogs and archives that a hash file lists, but that are not there.
    static std::vector<Damage> missingFiles();
    /// The left-overs of former updates in the temporary folder, with their size; no names.
    static std::vector<Damage> leftOvers();

private:
    void checkArchivesIn(const fileString& folder, bool areReferenced);

    std::size_t mChecked = 0;
    std::vector<Damage> mDamages;
};

} // namespace OrvHost
