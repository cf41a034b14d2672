#pragma once

#include <set>

#include "OrvLibrary/IO/LibraryImport.h"
#include "OrvLibrary/host/ZipUtils.h"

namespace LibraryImport {

/// Advances the progress by one step, labelled with the member's name. Null is nobody to tell.
void updateProgressDialog(const std::shared_ptr<ProgressSubject>& progress,
                          const marl::unicode::String& member);

/// Copies the members of `source`, except those to skip, into the archive `target`, which must exist. Every
/// member is reported, skipped or not; one that is skipped is not verified.
/// @return false when a member could not be copied; the walk ends there, and what was copied stays
/// @throws NullPointerError when `progress` is null; std::runtime_error for an unsound archive
bool copyArchivedFile(const fileString& source, const fileString& target,
                      const std::shared_ptr<ProgressSubject>& progress,
                      const std::set<fileString>& skippedMembers);
/// The same as a part of a batch, which may have begun the target, and completes it.
/// @param refused takes the name of the member that could not be copied; may be null
bool copyArchivedFile(ZipUtils::ArchiveBatch& batch, const fileString& source, const fileString& target,
                      const std::shared_ptr<ProgressSubject>& progress,
                      const std::set<fileString>& skippedMembers, fileString* refused);

} // namespace LibraryImport
