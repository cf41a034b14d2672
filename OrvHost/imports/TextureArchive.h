#pragma once

#include <memory>
#include <set>
#include <string>
#include <vector>

#include "OrvHost/OrvHostExport.h"
#include "OrvLibrary/host/ProgressSubject.h"
#include "OrvLibrary/host/fileString.h"

/// Finds damage in an archive of referenced files and repairs it. The functions may be called from any
/// thread.
namespace OrvHost::TextureArchive {

/// Verifies an archive.
/// @param skipped members whose damage does not matter
/// @param progress may be null; receives the bytes, and is asked for a cancel
/// @return the problem, with the path and the member: `/a/Kitchen.zip: member "oak.png": its checksum is
/// wrong`; empty if it is sound
/// @throws std::runtime_error after a cancel
ORVHOST_EXPORT std::string damageOf(const fileString& archive, const std::set<fileString>& skipped,
                                    const std::shared_ptr<ProgressSubject>& progress);

/// The name under which a damaged archive is kept: the first free one of "NAME.zip.damaged",
/// "NAME.zip.damaged.2", "NAME.zip.damaged.3" and so on.
ORVHOST_EXPORT fileString setAsideName(const fileString& archive);

/// Keeps a damaged archive under another name and replaces it, by one rename, with an archive of its sound
/// members. If there are none, the new archive is empty.
/// @param keptAs a free name in the same folder, see `setAsideName`
/// @param progress may be null; receives the bytes, and is asked for a cancel
/// @return the names of the lost members, as far as known
/// @throws std::runtime_error if a file cannot be written, and after a cancel; the archive is then unchanged
ORVHOST_EXPORT std::vector<std::string> setAside(const fileString& archive, const fileString& keptAs,
                                                 const std::shared_ptr<ProgressSubject>& progress);

} // namespace OrvHost::TextureArchive
