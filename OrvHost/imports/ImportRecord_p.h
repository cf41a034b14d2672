#pragma once

#include <cstdint>
#include <stdexcept>
#include <string>
#include <vector>

#include "OrvLibrary/host/fileString.h"

namespace OrvHost {

/// Distinguishes two states of a file without reading it.
struct FileStamp
{
    bool exists = false;
    std::int64_t size = 0;     ///< in bytes
    std::int64_t modified = 0; ///< in nanoseconds since 1970

    /// The current state of a file. Does not follow a link.
    static FileStamp of(const fileString& path);
    bool operator==(const FileStamp& other) const;
    bool operator!=(const FileStamp& other) const { return !(*this == other); }
};

/// One file that an import changes.
struct ImportPart
{
    /// Which file of the library it is: "library" or "textures", followed by any addition to its name.
    /// "Kitchen.orvlib.bak" has the role "library.bak".
    std::string role;
    FileStamp before; ///< if it exists, it is kept under the import's number and role: "12.library"
    FileStamp after;  ///< the state after the import; not set while it is active
};

/// One import in the record.
struct ImportEntry
{
    enum class State
    {
        Begun, ///< files are being replaced
        Done,
        Undoing ///< files are being restored
    };

    int number = 0;   ///< grows by one for each import
    std::string name; ///< the name of the library, without extension
    bool isProprietary = false;
    State state = State::Begun;
    std::vector<ImportPart> parts;

    /// Null if the import does not change this file.
    const ImportPart* part(const std::string& role) const;
    /// The path of the file, in the folders of the installed path service.
    fileString path(const ImportPart& part) const;
    /// The file that the import changes. For a texture archive that is a link, it is the file behind the
    /// link, because the merge changes that one; a database replaces a link.
    fileString changedFile(const ImportPart& part) const;
    /// The name of the kept file in the folder of the former imports.
    fileString keptName(const ImportPart& part) const;
    /// Whether an import that has begun counts as done: the database, which is replaced last, has changed.
    /// Without a database, the texture archive counts.
    bool hasTakenPlace() const;
};

/// The paths of a library's database and texture archive, in the folders of the installed path service.
namespace ImportFiles {

fileString library(const fileString& stem, bool isProprietary);
fileString textures(const fileString& stem, bool isProprietary);

} // namespace ImportFiles

/// The file "imports.json" in the folder of the former imports. It has the imports that can be undone, oldest
/// first. docs/formats/former-imports.md describes it.
namespace ImportRecord {

/// Thrown if the file is not a record of imports.
class Unreadable : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

/// Empty if there is no file.
/// @throws Unreadable; std::runtime_error if the file cannot be read at all
std::vector<ImportEntry> read(const fileString& folder);
/// Renames a file that is not a record to "imports.json.unreadable".
void setAside(const fileString& folder);
/// Replaces the file in one step.
/// @throws std::runtime_error
void write(const fileString& folder, const std::vector<ImportEntry>& entries);

} // namespace ImportRecord

} // namespace OrvHost
