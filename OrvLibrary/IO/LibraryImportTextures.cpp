// How it works: the new archive is moved to its place if the name is free. Otherwise both are merged into an
// archive that starts empty and then replaces the old one. If an update has replaced the old archive
// meanwhile, the merge is repeated.
#include <new>
#include <stdexcept>

#include "OrvLibrary/IO/LibraryImport_p.h"
#include "OrvLibrary/host/FileReaper.h"
#include "OrvLibrary/host/FileSearch.h"
#include "OrvLibrary/host/FileUtils.h"
#include "OrvLibrary/host/NullPointerRaiser.h"
#include "OrvLibrary/host/PathUtils.h"
#include "OrvLibrary/host/ZipUtils.h"

namespace LibraryImport {

namespace {

/// Copies the members of an archive, except those to skip.
/// @throws std::runtime_error, also if a member cannot be copied
void copyAll(ZipUtils::ArchiveBatch& batch, const fileString& source, const fileString& target,
             const std::shared_ptr<ProgressSubject>& progress, const std::set<fileString>& skippedMembers)
{
    fileString refused;
    if (!copyArchivedFile(batch, source, target, progress, skippedMembers, &refused))
        throw std::runtime_error(source.toNativeString() + ": member \"" + refused.toNativeString() +
                                 "\": cannot be copied");
}

/// Makes the merged archive beside the destination and then replaces it. The new archive starts empty. First
/// come those members of the old archive that stay, then all new ones. The destination is locked before it is
/// read, so that nothing is lost if another process merges into it.
/// @throws std::runtime_error, std::bad_alloc
void mergeArchives(const fileString& extracted, const fileString& destination,
                   const std::shared_ptr<ProgressSubject>& progress)
{
    const std::vector<fileString> names = ZipUtils::getFilenamesInArchive(extracted);
    ZipUtils::ArchiveBatch batch(progress);
    batch.begin(destination);
    copyAll(batch, destination, destination, progress, {names.begin(), names.end()});
    copyAll(batch, extracted, destination, progress, {});
    batch.complete();
}

/// Merges again if an update has replaced the destination meanwhile. Otherwise the merge, made from the
/// former archive, would undo the update.
/// @throws std::runtime_error, std::bad_alloc
void mergeUntilDone(const fileString& extracted, const fileString& destination,
                    const std::shared_ptr<ProgressSubject>& progress)
{
    constexpr int kTries = 5;
    for (int attempt = 1;; ++attempt) {
        try {
            mergeArchives(extracted, destination, progress);
            return;
        } catch (const ZipUtils::Overtaken&) {
            if (attempt == kTries)
                throw;
        }
    }
}

/// @throws std::runtime_error, std::bad_alloc
void placeArchive(const fileString& extracted, const fileString& destination,
                  const std::shared_ptr<ProgressSubject>& progress)
{
    // The destination may appear at any moment, when another process imports a library with the same name.
    if (destination.pathExists() || !ZipUtils::moveToNewArchive(extracted, destination, progress))
        mergeUntilDone(extracted, destination, progress);
}

} // namespace

fileString getArchivedTexturePath(const fileString& library, bool proprietary)
{
    const PathUtils& paths = PathUtils::getObject();
    const fileString folder =
        proprietary ? paths.getProprietaryLibraryReferencedFilesPath() : paths.getUserTexturePath();
    return folder + library.stem() + ZipUtils::getExtension();
}

bool moveArchivedTextures(const fileString& extracted, const fileString& destination,
                          std::shared_ptr<ProgressSubject> progress)
{
    std::string reason;
    return moveArchivedTextures(extracted, destination, std::move(progress), reason);
}

bool moveArchivedTextures(const fileString& extracted, const fileString& destination,
                          std::shared_ptr<ProgressSubject> progress, std::string& reason)
{
    // Deliberate: if there is nothing to move, that is success.
    // Kept by: LibraryImportTexturesTest.missingExtractedArchiveIsSuccessAndChangesNothing
    if (!extracted.pathExists())
        return true;
    // Removed in every case.
    const FileReaper consumed(extracted);
    FileUtils::createDirectoriesWithPerm(destination.parentPath(), false);
    try {
        placeArchive(extracted, destination, progress);
    } catch (const std::runtime_error& failure) {
        reason = failure.what();
        return false;
    } catch (const std::bad_alloc&) {
        reason = destination.toNativeString() + ": not enough memory";
        return false;
    }
    FileSearch::get().resetFileSearch(destination.parentPathWithSeparator());
    return true;
}

bool copyArchivedFile(const fileString& source, const fileString& target,
                      const std::shared_ptr<ProgressSubject>& progress,
                      const std::set<fileString>& skippedMembers)
{
    ZipUtils::ArchiveBatch batch(progress);
    const bool isGood = copyArchivedFile(batch, source, target, progress, skippedMembers, nullptr);
    batch.complete();
    return isGood;
}

bool copyArchivedFile(ZipUtils::ArchiveBatch& batch, const fileString& source, const fileString& target,
                      const std::shared_ptr<ProgressSubject>& progress,
                      const std::set<fileString>& skippedMembers, fileString* refused)
{
    if (!progress)
        NullPointerRaiser::Throw("progress", __FILE__, __LINE__);
    bool isGood = true;
    batch.walk(source, [&](const fileString& member, ZipUtils::ArchiveHandle& handle,
                           const ZipUtils::RawDataInfo& raw) {
        updateProgressDialog(progress, member.unicodeString());
        if (skippedMembers.count(member) == 0)
            isGood = ZipUtils::writeFileToArchiveRaw(target, member, handle, false, raw);
        else
            ZipUtils::leaveOutMember(handle, raw);
        if (!isGood && refused)
            *refused = member;
        return isGood;
    });
    return isGood;
}

} // namespace LibraryImport
