#include <cerrno>

#include <cstdio>
#include <fcntl.h>
#include <unistd.h>

#include "OrvLibrary/host/FileUtils.h"
#include "OrvLibrary/host/impl/files/FileHandle_p.h"
#include "OrvLibrary/host/impl/files/FileUtilsMove_p.h"
#include "OrvLibrary/host/impl/files/ReplacementFile_p.h"

namespace {

/// Opens the file beside the target and copies the whole source into it.
std::unique_ptr<host::ReplacementFile> copyBeside(int source, const std::string& to,
                                                  host::ReplacementFile::Mode mode)
{
    struct stat status = {};
    if (fstat(source, &status) != 0)
        return nullptr;
    auto copy = host::ReplacementFile::open(to, mode, status.st_mode & 0777);
    return copy && host::copyContent(source, copy->descriptor()) ? std::move(copy) : nullptr;
}

/// Gives the copy the times and permissions of the source, as a rename would. Ignores failures.
void keepAttributes(int source, int copy)
{
    struct stat status = {};
    if (fstat(source, &status) != 0)
        return;
    const struct timespec times[] = {status.st_atim, status.st_mtim};
    fchmod(copy, status.st_mode & 0777);
    futimens(copy, times);
}

} // namespace

bool host::moveByCopy(const std::string& from, const std::string& to, bool keepSource)
{
    const FileHandle source = openRegularFile(from);
    const auto copy = source ? copyBeside(source.get(), to, ReplacementFile::Mode::Replaced) : nullptr;
    if (!copy)
        return false;
    keepAttributes(source.get(), copy->descriptor());
    // After a power failure, one of the two must be there.
    return copy->commit() && (keepSource || (syncFolderOf(to) && unlink(from.c_str()) == 0));
}

namespace FileUtils {

bool copyFile(const fileString& from, const fileString& to, bool overwrite)
{
    using Mode = host::ReplacementFile::Mode;
    const host::FileHandle source = host::openRegularFile(from.toNativeString());
    const auto copy =
        source ? copyBeside(source.get(), to.toNativeString(), overwrite ? Mode::Locked : Mode::Fresh)
               : nullptr;
    return copy && copy->commit();
}

bool moveFile(const fileString& from, const fileString& to, bool keepSource)
{
    const std::string& source = from.toNativeString();
    const std::string& target = to.toNativeString();
    if (!host::isUsable(source) || !host::isUsable(target))
        return false;
    if (rename(source.c_str(), target.c_str()) != 0)
        return errno == EXDEV && host::moveByCopy(source, target, keepSource);
    host::ReplacementFile::removeLeftover(target);
    return true;
}

bool renameFile(const fileString& from, const fileString& to)
{
    return moveFile(from, to, false);
}

} // namespace FileUtils
