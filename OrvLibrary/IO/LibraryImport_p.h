#pragma once

#include <set>

#include "OrvLibrary/IO/LibraryImport.h"
#include "OrvLibrary/host/ZipUtils.h"

namespace LibraryImport {

/// Counts one step and shows the member's name. `progress` may be null.
void updateProgressDialog(const std::shared_ptr<ProgressSubject>& progress,
                          const marl::unicode::String& member);

/// Copies the members of `source`, except those to skip, into the archive `target`, which must exist. Every
/// member counts as a step, even one that is skipped; a skipped one is not verified.
/// @return false if a member could not be copied. The walk ends there, and the copied members stay.
/// @throws NullPointerError if `progress` is null; std::runtime_error if the archive is damaged
bool copyArchivedFile(const fileString& source, const fileString& target,
                      const std::shared_ptr<ProgressSubject>& progress,
                      const std::set<fileString>& skippedMembers);
/// Does the same as a part of a batch, which may have begun the target; then completes the batch.
/// @param refused set to the name of the member that could not be copied; may be null
bool copyArchivedFile(ZipUtils::ArchiveBatch& batch, const fileString& source, const fileString& target,
                      const std::shared_ptr<ProgressSubject>& progress,
                      const std::set<fileString>& skippedMembers, fileString* refused);

} // namespace LibraryImport
