#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "OrvHost/imports/ImportRecord_p.h"
#include "OrvHost/update/HostLock.h"
#include "OrvLibrary/host/ProgressSubject.h"
#include "OrvLibrary/host/fileString.h"

namespace OrvHost {

/// The folder "former-imports" of a root, with its lock. It holds the files replaced by the last imports and
/// the record of these imports.
///
/// An import is done in four steps, so that a program may be killed at any time: the files that will be
/// replaced are kept; the record says that the import has begun; the files are replaced, the database last;
/// the record says that the import is done. The next process that opens the folder finds out how far the
/// import was, and takes it back if the database was not yet in place.
class FormerImports
{
public:
    static constexpr std::size_t kMost = 3; ///< imports that can be undone

    /// The folder for a root; it need not exist.
    static fileString folderOf(const fileString& root);

    /// Creates the folder, waits for its lock, and completes or takes back what a killed program left
    /// unfinished.
    /// @param progress may be null; a cancel ends the waiting
    /// @throws std::runtime_error
    FormerImports(const fileString& root, const std::shared_ptr<ProgressSubject>& progress);

    /// The imports that can be undone, oldest first.
    const std::vector<ImportEntry>& entries() const { return mEntries; }

    /// The undo that a killed program had begun and this object has completed.
    const std::optional<ImportEntry>& completedUndo() const { return mCompletedUndo; }

    /// Keeps the files that an import will change and records that it has begun.
    /// @param roles as in `ImportPart::role`
    /// @throws std::runtime_error if a file cannot be kept; nothing is recorded then, and this object must
    /// not be used any more
    void begin(const std::string& name, bool isProprietary, const std::vector<std::string>& roles);
    /// Adds a file that the current import will make.
    void addNewFile(const std::string& role);
    /// Makes a new file with the former content of a file in the current import.
    /// @throws std::runtime_error if it cannot be made
    fileString copyKept(const std::string& role) const;
    /// Records that the current import is done, and drops imports that are too old.
    void commit();
    /// Restores what the current import changed, and drops its record.
    /// @throws std::runtime_error if a file cannot be restored; the next object tries again
    void rollBack();
    /// Why an import that is done cannot be taken back: a file was changed after it; empty if none was.
    static std::string refusalOf(const ImportEntry& entry);
    /// Takes back the last import.
    /// @throws std::runtime_error like `rollBack`, and if a file was changed after the import
    void undoLast();

private:
    void recover();
    void keep(const ImportEntry& entry, ImportPart& part) const;
    void putBack(const ImportEntry& entry, const ImportPart& part) const;
    void dropLast();
    void save();
    void removeUnlisted() const;

    fileString mFolder;
    HostLock mLock;
    std::vector<ImportEntry> mEntries;
    std::optional<ImportEntry> mCompletedUndo;
};

} // namespace OrvHost
