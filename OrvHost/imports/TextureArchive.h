#pragma once

#include <memory>
#include <set>
#include <string>
#include <vector>

#include "OrvHost/OrvHostExport.h"
#include "OrvLibrary/host/ProgressSubject.h"
#include "OrvLibrary/host/fileString.h"

/// Damage in an archive of referenced files, and the way out of it. Functions may be called from any thread.
namespace OrvHost::TextureArchive {

/// Verifies an archive.
/// @param skipped members whose damage does not matter
/// @param progress may be null; told the bytes, and asked for a cancel
/// @return why the archive is not sound, with its path and the member: `/a/Kitchen.zip: member "oak.png": its
/// checksum is wrong`; empty when it is sound
/// @throws std::runtime_error after a cancel
ORVHOST_EXPORT std::string damageOf(const fileString& archive, const std::set<fileString>& skipped,
                                    const std::shared_ptr<ProgressSubject>& progress);

/// The name under which a damaged archive is kept: "NAME.zip.damaged", or the first free one of
/// "NAME.zip.damaged.2", "NAME.zip.damaged.3" and so on.
ORVHOST_EXPORT fileString setAsideName(const fileString& archive);

/// Keeps a damaged archive under another name and puts an archive of its sound members in its place, by one
/// rename. Where no member is sound, that archive is empty.
/// @param keptAs a name in the same folder that nothing has, see `setAsideName`
/// @param progress may be null; told the bytes, and asked for a cancel
/// @return the names of the members that are lost, as far as they are known
/// @throws std::runtime_error when a file cannot be written, and after a cancel; the archive is then as it
/// was
ORVHOST_EXPORT std::vector<std::string> setAside(const fileString& archive, const fileString& keptAs,
                                                 const std::shared_ptr<ProgressSubject>& progress);

} // namespace OrvHost::TextureArchive
