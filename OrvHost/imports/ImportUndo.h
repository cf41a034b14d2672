#pragma once

#include <optional>
#include <string>

#include "OrvHost/OrvHostExport.h"
#include "OrvLibrary/host/fileString.h"

namespace OrvHost {

/// Takes imports back, the last one first. The last three imports of a root can be taken back; what they
/// replaced is kept in its folder "former-imports". For example:
///
///     ImportUndo undo(host.root());
///     if (const auto last = undo.last())
///         ask("Take back the import of " + last->name + "?");
///     undo.run();
///
/// An object may be used by one thread at a time.
class ORVHOST_EXPORT ImportUndo
{
public:
    /// An import that can be taken back.
    struct Import
    {
        std::string name;    ///< of the library, such as "Kitchen"
        fileString library;  ///< its database; empty when the archive held none
        fileString textures; ///< its texture archive; empty when the archive held no referenced files
    };

    /// @param root as for `ArchiveImport`
    explicit ImportUndo(const fileString& root);

    /// The import that `run` would take back; none when there is none left. Changes nothing and waits for
    /// nobody.
    std::optional<Import> last() const;
    /// Gives the database, its ".bak" file and the texture archive the content that they had before the last
    /// import. A file that was not there before is removed.
    /// @return the import that was taken back
    /// @throws std::runtime_error when there is none, when a file was changed after the import (nothing is
    /// changed then), when another import keeps the lock, or when a file cannot be put back (the next undo or
    /// import tries again)
    Import run();

private:
    fileString mRoot;
};

} // namespace OrvHost
