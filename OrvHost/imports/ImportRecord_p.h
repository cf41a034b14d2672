#pragma once

#include <cstdint>
#include <stdexcept>
#include <string>
#include <vector>

#include "OrvLibrary/host/fileString.h"

namespace OrvHost {

/// Tells two states of a file apart without reading it.
struct FileStamp
{
    bool exists = false;
    std::int64_t size = 0;     ///< in bytes
    std::int64_t modified = 0; ///< in nanoseconds since the epoch

    /// The state of a file now. A link is looked at itself.
    static FileStamp of(const fileString& path);
    bool operator==(const FileStamp& other) const;
    bool operator!=(const FileStamp& other) const { return !(*this == other); }
};

/// One file that an import changes.
struct ImportPart
{
    /// Which file of the library: "library" or "textures", followed by what its name has in addition, such as
    /// "library.bak" for "Kitchen.orvlib.bak".
    std::string role;
    FileStamp before; ///< kept below the import's number and role, such as "12.library", when it exists
    FileStamp after;  ///< what the import left; not set while it is under way
};

/// One import as it stands in the record.
struct ImportEntry
{
    enum class State
    {
        Begun, ///< files are being changed
        Done,
        Undoing ///< files are being put back
    };

    int number = 0;   ///< grows by one with each import
    std::string name; ///< the stem of the library's file name
    bool isProprietary = false;
    State state = State::Begun;
    std::vector<ImportPart> parts;

    /// Null when the import does not change such a file.
    const ImportPart* part(const std::string& role) const;
    /// Where the file lives, in the folders of the installed path service.
    fileString path(const ImportPart& part) const;
    /// The name of the kept file in the folder of former imports.
    fileString keptName(const ImportPart& part) const;
    /// Whether an import that has begun went so far that it counts as done: the database, which is replaced
    /// last, is another one. Without a database the texture archive counts.
    bool hasTakenPlace() const;
};

/// The database and the texture archive of a library name, in the folders of the installed path service.
namespace ImportFiles {

fileString library(const fileString& stem, bool isProprietary);
fileString textures(const fileString& stem, bool isProprietary);

} // namespace ImportFiles

/// "imports.json" in the folder of former imports: the imports that can be taken back, the oldest first.
/// docs/formats/former-imports.md describes it.
namespace ImportRecord {

/// The file is no record of imports.
class Unreadable : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

/// Empty when there is no such file.
/// @throws Unreadable; std::runtime_error when the file cannot be read at all
std::vector<ImportEntry> read(const fileString& folder);
/// Keeps a file that is no record as "imports.json.unreadable".
void setAside(const fileString& folder);
/// Replaces the file in one step.
/// @throws std::runtime_error
void write(const fileString& folder, const std::vector<ImportEntry>& entries);

} // namespace ImportRecord

} // namespace OrvHost
