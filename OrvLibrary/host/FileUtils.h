#pragma once

#include <cstdint>

#include "OrvLibrary/OrvLibraryExport.h"
#include "OrvLibrary/host/fileString.h"

/// File operations. All may be called from any thread. They follow links and throw nothing, except where
/// stated.
namespace FileUtils {

ORVLIBRARY_EXPORT bool pathExists(const fileString& path);
/// The size in bytes. -1 if the file is missing or is not a regular file.
ORVLIBRARY_EXPORT std::int64_t fileSize(const fileString& path);
/// Whether the file may be written. If it is missing: whether its folder may be written.
ORVLIBRARY_EXPORT bool canWriteFile(const fileString& path);
/// Whether the file is read-only, or locked by another open stream. False if it is missing.
ORVLIBRARY_EXPORT bool isPathWriteLocked(const fileString& path);
/// Removes read-only protection: the owner may then read and write. Ignores failures.
ORVLIBRARY_EXPORT void makeFileWritable(const fileString& path);
/// Gives a new file the host's standard permissions (0644).
/// @throws std::runtime_error with the path and the system's message
ORVLIBRARY_EXPORT void setFilePermission(const fileString& path);
/// Creates all missing folders of `path`. Folders that exist stay unchanged.
/// @param privateFolder if true, creates the folders with mode 0700 instead of 0755
/// @return whether the folder now exists
ORVLIBRARY_EXPORT bool createDirectoriesWithPerm(const fileString& path, bool privateFolder);
/// Removes a file or a link, never a folder.
/// @param flags 1 also removes read-only files; on this platform 0 does so, too
/// @return whether nothing has this name now
ORVLIBRARY_EXPORT bool removePath(const fileString& path, int flags = 0);
/// Removes a folder with its content. Links are removed, not followed. Refuses an empty path, a relative path
/// and the root.
/// @param flags 1 also removes content of read-only folders
/// @return whether nothing has this name now
ORVLIBRARY_EXPORT bool removeDirectoryAndFiles(const fileString& path, int flags);
/// Copies a file. The copy is written beside the target, synced and renamed to it, so the target is never
/// incomplete. An existing target keeps its permissions. Fails if it cannot be written or locked.
/// @param overwrite if false, fails if the target exists, even if it appears during the copying
ORVLIBRARY_EXPORT bool copyFile(const fileString& from, const fileString& to, bool overwrite);
/// Moves a file with one rename and replaces an existing target. To another device, the file is copied beside
/// the target, synced and renamed.
/// @param keepSource if true, the source stays when it is on another device
ORVLIBRARY_EXPORT bool moveFile(const fileString& from, const fileString& to, bool keepSource);
/// Renames a file and replaces an existing target. Between devices it works like `moveFile`.
ORVLIBRARY_EXPORT bool renameFile(const fileString& from, const fileString& to);

} // namespace FileUtils
