#pragma once

#include <optional>
#include <string>

#include "OrvHost/OrvHostExport.h"
#include "OrvLibrary/host/fileString.h"

namespace OrvHost {

/// Takes imports back, beginning with the last one. The last three imports of a root can be undone; the files
/// they replaced are in its folder "former-imports". Example:
///
///     ImportUndo undo(host.root());
///     if (const auto last = undo.last())
///         ask("Take back the import of " + last->name + "?");
///     undo.run();
///
/// One thread at a time may use an object.
class ORVHOST_EXPORT ImportUndo
{
public:
    /// An import that can be undone.
    struct Import
    {
        std::string name;    ///< of the library, such as "Kitchen"
        fileString library;  ///< its database; empty if the archive had none
        fileString textures; ///< its texture archive; empty if the archive had no referenced files
    };

    /// @param root as for `ArchiveImport`
    explicit ImportUndo(const fileString& root);

    /// The import that `run` would take back; empty if there is none. If an undo was killed, that is the
    /// import which it had begun to take back. Changes nothing and does not wait.
    std::optional<Import> last() const;
    /// Why `run` would refuse to take that import back, because a file was changed after it; empty if none
    /// was. Changes nothing and does not wait.
    std::string refusal() const;
    /// Restores the database, its ".bak" file and the texture archive as they were before the last import. A
    /// file that did not exist before is removed.
    /// @return the import that was undone
    /// @throws std::runtime_error if there is none, if a file was changed after the import (nothing is
    /// changed then), if another import has the lock, or if a file cannot be restored (the next undo or
    /// import tries again)
    Import run();

private:
    fileString mRoot;
};

} // namespace OrvHost
