#pragma once

#include <memory>
#include <string>
#include <utility>

#include "OrvLibrary/OrvLibraryExport.h"
#include "OrvLibrary/host/ProgressSubject.h"
#include "OrvLibrary/host/fileString.h"

/// Turns a packed library (".orvlibz": one ".orvlib" database and the files it refers to) into a database
/// file and a texture archive. The functions run on the thread of the caller, usually a worker behind a
/// progress dialog. Several may run at the same time on different files.
namespace LibraryImport {

/// Whether there is a file, and its path; the path is empty if not.
using FoundFile = std::pair<bool, fileString>;
/// First the extracted database, then the ".zip" archive of the referenced files.
using UnpackResult = std::pair<FoundFile, FoundFile>;

/// Unpacks an archive into a database file and an archive of all other members. The files belong to the
/// caller. A file that is not in the result does not exist afterwards, even if it was beside the archive
/// before. The exception is a file that is read-only or locked by another program: it stays, and counts as
/// not found. If the archive is missing or the user cancels, the result is empty. If there are several
/// databases, the last one counts. A member that cannot be copied is skipped. The new files get their names
/// at the end, after everything has been verified; a large database is then synced to the disk.
/// @param useTemporaryNames if true, makes new names in the temporary folder. If false, the files are beside
/// the archive, with its path and name followed by ".orvlib" and ".zip"; an existing database is replaced,
/// and an existing archive is extended.
/// @param progress may be null. At each member it counts one step and is asked for a cancel; the total is in
/// bytes. Inside of members, after every 8 MB of work, it is asked as well and receives the bytes
/// (`advanceBytes`). Labels name the long steps after the last member: "checking", "putting in place".
/// @throws std::runtime_error if the archive is damaged, or if it would be replaced by its own content
/// ("x.zip" beside itself); std::ios_base::failure if the database cannot be written. No file is left then.
/// Never throws after a cancel.
ORVLIBRARY_EXPORT UnpackResult unpack(const fileString& archive, bool useTemporaryNames,
                                      std::shared_ptr<ProgressSubject> progress);

/// Unpacks a local file or a web address, always to temporary names. A downloaded archive is removed
/// afterwards. If the download fails, the result is empty.
/// @param progress as for `unpack`
/// @throws what `unpack` throws
ORVLIBRARY_EXPORT UnpackResult unpackArchivedLibrary(const fileString& archive,
                                                     std::shared_ptr<ProgressSubject> progress);

/// Copies a database into the temporary folder. The copy is writable and belongs to the caller.
/// @return false and an empty path if there is no such database or copying fails
/// @throws NullPointerError if `progress` is null
ORVLIBRARY_EXPORT FoundFile createTempDatabase(const fileString& library,
                                               std::shared_ptr<ProgressSubject> progress);

/// The path of a library's texture archive: the user's texture folder or, for a proprietary library, the
/// folder of referenced files, then the library's name with the extension ".zip".
ORVLIBRARY_EXPORT fileString getArchivedTexturePath(const fileString& library, bool proprietary);

/// Moves a newly extracted texture archive to its place. If there is an archive already, the two are merged:
/// the result has every member of the new archive, and those members of the old one whose names are not in
/// the new one. `extracted` is removed in every case. After a failure the destination is unchanged. If
/// `extracted` is missing, nothing happens, and that is success. A damaged member of the old archive does no
/// harm if the new one replaces it. Several processes may do this for one destination at the same time, and
/// nothing is lost; each waits at most 5 s for the others.
/// @param progress required if archives must be merged. Used like that of `unpack`, but asked for a cancel
/// only after every 8 MB of work.
/// @return whether the destination has the extracted files; false also after a cancel
/// @throws NullPointerError if `progress` is null and required
ORVLIBRARY_EXPORT bool moveArchivedTextures(const fileString& extracted, const fileString& destination,
                                            std::shared_ptr<ProgressSubject> progress);
/// Does the same.
/// @param reason set on failure: names the archive, and the member if one is the cause
ORVLIBRARY_EXPORT bool moveArchivedTextures(const fileString& extracted, const fileString& destination,
                                            std::shared_ptr<ProgressSubject> progress, std::string& reason);

} // namespace LibraryImport
