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

/// The folder "former-imports" of a root, locked: what the last imports replaced, and the record of it.
///
/// A change of the library goes in four steps, so that a program may die at any moment: the files that will
/// be replaced are kept, the record says that an import has begun, the files are replaced (the database
/// last), the record says that the import is done. Whoever opens the folder next finds out how far it came,
/// and takes back an import whose database had not come to its place.
class FormerImports
{
public:
    static constexpr std::size_t kMost = 3; ///< imports that can be taken back

    /// The folder of a root; it need not exist.
    static fileString folderOf(const fileString& root);

    /// Makes the folder when it is missing, waits for its lock, and completes or takes back what a program
    /// left half done.
    /// @param progress may be null; a cancel ends the wait
    /// @throws std::runtime_error
    FormerImports(const fileString& root, const std::shared_ptr<ProgressSubject>& progress);

    /// The imports that can be taken back, the oldest first.
    const std::vector<ImportEntry>& entries() const { return mEntries; }

    /// An undo that a killed program had begun, and that this object completed.
    const std::optional<ImportEntry>& completedUndo() const { return mCompletedUndo; }

    /// Keeps the files that an import is going to change and notes that it has begun.
    /// @param roles as in `ImportPart::role`
    /// @throws std::runtime_error when a file cannot be kept; nothing is noted then
    void begin(const std::string& name, bool isProprietary, const std::vector<std::string>& roles);
    /// One more file that the import that has begun is going to make.
    void addNewFile(const std::string& role);
    /// A new file with the content that a file of the import that has begun had before.
    /// @throws std::runtime_error when it cannot be made
    fileString copyKept(const std::string& role) const;
    /// Notes that the import that has begun is done, and forgets imports that are too old.
    void commit();
    /// Puts back what the import that has begun changed, and forgets it.
    /// @throws std::runtime_error when a file cannot be put back; the next object tries again
    void rollBack();
    /// Takes the last import back.
    /// @throws std::runtime_error as `rollBack`, and when a file was changed after the import
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
