#pragma once

#include <cstdint>

#include "OrvLibrary/OrvLibraryExport.h"
#include "OrvLibrary/host/fileString.h"

/// File operations. Every function may be called from any thread, follows links unless it says otherwise, and
/// lets no exception out unless it says so.
namespace FileUtils {

ORVLIBRARY_EXPORT bool pathExists(const fileString& path);
/// Size in bytes; 0 for an empty file, -1 for what is missing or no regular file.
ORVLIBRARY_EXPORT std::int64_t fileSize(const fileString& path);
/// Whether an existing file may be written. For a missing file: whether its folder can be written.
ORVLIBRARY_EXPORT bool canWriteFile(const fileString& path);
/// Whether the file is locked by another open stream or read-only. False for a missing file.
ORVLIBRARY_EXPORT bool isPathWriteLocked(const fileString& path);
/// Clears read-only protection: the owner may read and write. Failure is ignored.
ORVLIBRARY_EXPORT void makeFileWritable(const fileString& path);
/// Gives a file just written the host's standard permissions (0644).
/// @throws std::runtime_error with the path and the system's text
ORVLIBRARY_EXPORT void setFilePermission(const fileString& path);
/// Creates every missing folder of `path`; one that exists is left as it is.
/// @param privateFolder true creates the folders with mode 0700 instead of 0755
/// @return whether the folder exists afterwards
ORVLIBRARY_EXPORT bool createDirectoriesWithPerm(const fileString& path, bool privateFolder);
/// Removes a file or a link, never a folder.
/// @param flags 0 plain; 1 also when the file is read-only, which on this platform needs no flag
/// @return whether nothing of that name is left
ORVLIBRARY_EXPORT bool removePath(const fileString& path, int flags = 0);
/// Removes a folder with its content. Links are removed, never followed. An empty path, a relative path and
/// the root are refused.
/// @param flags 1 also when folders in it are read-only
/// @return whether nothing of that name is left
ORVLIBRARY_EXPORT bool removeDirectoryAndFiles(const fileString& path, int flags);
/// Copies a file: written beside the target, synced and renamed over it, so that the target is whole or as it
/// was. An existing target keeps its permissions; one that cannot be written or locked is refused.
/// @param overwrite false refuses a target that exists, also one that another process makes during the copy
ORVLIBRARY_EXPORT bool copyFile(const fileString& from, const fileString& to, bool overwrite);
/// Moves a file by one rename, replacing a target that exists; across devices it is copied beside the target,
/// synced and renamed.
/// @param keepSource true leaves the source in place when it lies on another device
ORVLIBRARY_EXPORT bool moveFile(const fileString& from, const fileString& to, bool keepSource);
/// Renames a file by one rename, replacing a target that exists; across devices like `moveFile`.
ORVLIBRARY_EXPORT bool renameFile(const fileString& from, const fileString& to);

} // namespace FileUtils
