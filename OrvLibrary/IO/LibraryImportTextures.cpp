// The texture archives of imported libraries: where they live, and how a new one gets there.
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

/// Builds the merged archive beside the destination, whose place it takes when it is whole. It starts empty:
/// the members of the old archive that stay, then every new one.
bool mergeArchives(const fileString& extracted, const fileString& destination,
                   const std::shared_ptr<ProgressSubject>& progress)
{
    try {
        ZipUtils::ArchiveBatch batch;
        const std::vector<fileString> names = ZipUtils::getFilenamesInArchive(extracted);
        batch.begin(destination);
        if (!copyArchivedFile(destination, destination, progress, {names.begin(), names.end()}) ||
            !copyArchivedFile(extracted, destination, progress, {}))
            return false;
        batch.complete();
        return true;
    } catch (const std::runtime_error&) {
        return false;
    } catch (const std::bad_alloc&) {
        return false;
    }
}

bool placeArchive(const fileString& extracted, const fileString& destination,
                  const std::shared_ptr<ProgressSubject>& progress)
{
    if (!FileUtils::pathExists(destination) && FileUtils::copyFile(extracted, destination, false))
        return true;
    // It may be there by now: another process imports a library of the same name.
    return FileUtils::pathExists(destination) && mergeArchives(extracted, destination, progress);
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
    // Deliberate: there is nothing to move, and that is success.
    if (!extracted.pathExists())
        return true;
    // Consumed whatever happens.
    const FileReaper consumed(extracted);
    FileUtils::createDirectoriesWithPerm(destination.parentPath(), false);
    const bool isPlaced = placeArchive(extracted, destination, progress);
    if (isPlaced)
        FileSearch::get().resetFileSearch(destination.parentPathWithSeparator());
    return isPlaced;
}

bool copyArchivedFile(const fileString& source, const fileString& target,
                      const std::shared_ptr<ProgressSubject>& progress,
                      const std::set<fileString>& skippedMembers)
{
    if (!progress)
        NullPointerRaiser::Throw("progress", __FILE__, __LINE__);
    progress->createSubProgress(ZipUtils::getSizeOfArchive(source));
    bool isGood = true;
    ZipUtils::getFilesDataInArchive(source, [&](const fileString& member, ZipUtils::ArchiveHandle& handle,
                                                const ZipUtils::RawDataInfo& raw) {
        updateProgressDialog(progress, member.unicodeString());
        if (skippedMembers.count(member) == 0)
            isGood = ZipUtils::writeFileToArchiveRaw(target, member, handle, false, raw);
        return isGood;
    });
    return isGood;
}

} // namespace LibraryImport
