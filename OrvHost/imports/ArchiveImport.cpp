#include "OrvHost/imports/ArchiveImport.h"

#include <stdexcept>

#include "OrvHost/imports/LibrarySource.h"
#include "OrvLibrary/host/FileReaper.h"
#include "OrvLibrary/host/FileUtils.h"
#include "OrvLibrary/host/PathUtils.h"

namespace OrvHost {

namespace {

fileString libraryPath(const LibrarySource& source, bool isProprietary)
{
    const PathUtils& paths = PathUtils::getObject();
    const fileString folder =
        isProprietary ? paths.getManufacturerLibraryPath() : paths.getUserLibraryDatabasePath();
    return folder + source.stem() + fileString(".orvlib");
}

fileString placeTextures(const LibraryImport::FoundFile& referenced, const fileString& library,
                         bool isProprietary, const std::shared_ptr<ProgressSubject>& progress)
{
    if (!referenced.first)
        return {};
    const fileString textures = LibraryImport::getArchivedTexturePath(library, isProprietary);
    if (!LibraryImport::moveArchivedTextures(referenced.second, textures, progress))
        throw std::runtime_error(textures.toNativeString() + ": the textures cannot be put there");
    return textures;
}

/// A copy of the library, in place of whatever former one was kept, be it read-only as its original was.
void keepFormer(const fileString& library)
{
    const fileString backup = library + fileString(".bak");
    fileString copy;
    copy.generateAsTempName(".bak");
    const FileReaper guard(copy);
    if (!FileUtils::copyFile(library, copy, true))
        throw std::runtime_error(backup.toNativeString() + ": the former library cannot be kept there");
    moveOver(copy, backup);
}

/// The former library is copied aside first, so that the name always stands for a whole library.
fileString placeDatabase(const LibraryImport::FoundFile& database, const fileString& library)
{
    if (!database.first)
        return {};
    if (library.pathExists())
        keepFormer(library);
    FileUtils::setFilePermission(database.second);
    moveOver(database.second, library);
    return library;
}

} // namespace

namespace ArchiveImport {

void run(const std::string& source, bool isProprietary, const std::shared_ptr<ProgressSubject>& progress,
         Result& result)
{
    result = {};
    const LibrarySource archive(source);
    const fileString library = libraryPath(archive, isProprietary);
    const std::unique_ptr<UnpackedFiles> files = archive.unpack(progress);
    result.textures = placeTextures(files->found.second, library, isProprietary, progress);
    result.library = placeDatabase(files->found.first, library);
}

} // namespace ArchiveImport

} // namespace OrvHost
