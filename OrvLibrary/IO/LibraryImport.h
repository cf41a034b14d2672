#pragma once

#include <memory>
#include <string>
#include <utility>

#include "OrvLibrary/OrvLibraryExport.h"
#include "OrvLibrary/host/ProgressSubject.h"
#include "OrvLibrary/host/fileString.h"

/// How a packed library (".orvlibz": one ".orvlib" database and the files that it refers to) becomes a
/// database file and a texture archive. The functions run on the caller's thread, typically a worker behind a
/// progress dialog; several may run at once on different files.
namespace LibraryImport {

/// Whether a file was made, and its path; empty when it was not.
using FoundFile = std::pair<bool, fileString>;
/// First the extracted database, second the ".zip" archive of the referenced files.
using UnpackResult = std::pair<FoundFile, FoundFile>;

/// Unpacks an archive into a database file and an archive of everything else. The files belong to the caller;
/// what is not in the result does not exist afterwards, also when a file of that name stood beside the
/// archive before. Only a file there that is read-only or locked by another program stays as it is, and
/// counts as not found.
/// A missing archive and a cancelled run give the empty result. Of several databases the last one counts; a
/// member that cannot be copied is skipped. The new files take their places at the end, after everything was
/// verified; a large database is on the disk then.
/// @param useTemporaryNames true writes to fresh names in the temporary folder; false beside the archive, as
/// its path and name followed by ".orvlib" and ".zip", where an existing database is replaced and an existing
/// archive is added to
/// @param progress may be null; is asked for a cancel and told one step at each member, with a total in
/// bytes; in between, after every 8 MB of work, it is asked as well and told the bytes (`advanceBytes`).
/// Labels name the long steps after the last member: "checking", "putting in place"
/// @throws std::runtime_error for an unsound archive, or one that would be replaced by what it holds ("x.zip"
/// beside itself), std::ios_base::failure when the database cannot be written; no file is left then. A run
/// that was cancelled never throws
ORVLIBRARY_EXPORT UnpackResult unpack(const fileString& archive, bool useTemporaryNames,
                                      std::shared_ptr<ProgressSubject> progress);

/// Unpacks a local file or an address, always to temporary names. A downloaded archive is removed. A download
/// that fails gives the empty result.
/// @param progress as for `unpack`
/// @throws as `unpack`
ORVLIBRARY_EXPORT UnpackResult unpackArchivedLibrary(const fileString& archive,
                                                     std::shared_ptr<ProgressSubject> progress);

/// Makes a writable private copy of a database in the temporary folder, owned by the caller.
/// @return false and an empty path when there is no such database or the copy fails
/// @throws NullPointerError when `progress` is null
ORVLIBRARY_EXPORT FoundFile createTempDatabase(const fileString& library,
                                               std::shared_ptr<ProgressSubject> progress);

/// Where the texture archive of a library lives: the user's texture folder or, for a proprietary library, the
/// folder of referenced files, then the library's stem and the zip extension.
ORVLIBRARY_EXPORT fileString getArchivedTexturePath(const fileString& library, bool proprietary);

/// Puts a freshly extracted texture archive into its place. When there is one already, the result holds every
/// member of the new archive and those members of the old one whose names the new one lacks, each once.
/// `extracted` is removed in every case, also after a failure, which leaves the destination as it was; a
/// missing one is success, and changes nothing.
/// A damaged member of the old archive that the new one replaces is no hindrance. Several processes may do
/// this for one destination at once, and nothing is lost; each waits at most 5 s for the others.
/// @param progress needed when there is something to merge; told and asked as by `unpack`, but asked for a
/// cancel after every 8 MB of work only
/// @return whether the destination holds the extracted files; false as well after a cancel
/// @throws NullPointerError when `progress` is null and needed
ORVLIBRARY_EXPORT bool moveArchivedTextures(const fileString& extracted, const fileString& destination,
                                            std::shared_ptr<ProgressSubject> progress);
/// The same.
/// @param reason filled in on failure; it names the archive, and the member where one is to blame
ORVLIBRARY_EXPORT bool moveArchivedTextures(const fileString& extracted, const fileString& destination,
                                            std::shared_ptr<ProgressSubject> progress, std::string& reason);

} // namespace LibraryImport
