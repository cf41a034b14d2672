// Moves an archive to a new name. A file that already has the name is never touched.
#include <cerrno>
#include <cstring>

#include <fcntl.h>
#include <unistd.h>

#include "OrvLibrary/host/ZipUtils.h"
#include "OrvLibrary/host/impl/zip/ZipOutput_p.h"

namespace ZipUtils {

namespace {

[[noreturn]] void fail(const fileString& path, int reason)
{
    throw std::runtime_error(path.toNativeString() + ": " + std::strerror(reason));
}

/// Copies instead of linking: to another file system, or to one without hard links.
/// @return false if the name is taken
bool copyToNew(const host::FileHandle& file, std::uint64_t size, const fileString& source,
               const fileString& target, ZipMeter& meter)
{
    ZipPatience patience(meter);
    try {
        ZipOutput output(target, patience, meter, host::ReplacementFile::Mode::Fresh);
        output.appendRange(file.get(), 0, size, source);
        output.flush();
        output.publish();
        return true;
    } catch (const Cancelled&) {
        throw;
    } catch (const std::runtime_error&) {
        if (host::nameIsTaken(target.toNativeString()))
            return false;
        throw;
    }
}

} // namespace

bool moveToNewArchive(const fileString& source, const fileString& target,
                      const std::shared_ptr<ProgressSubject>& progress)
{
    const std::string from = source.toNativeString();
    const std::string to = target.toNativeString();
    const host::FileHandle file = host::openRegularFile(from);
    struct stat status = {};
    if (!file || fstat(file.get(), &status) != 0)
        fail(source, errno);
    if (!host::isUsable(to))
        fail(target, errno);
    ZipMeter meter(progress);
    const bool isLinked = linkat(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), AT_SYMLINK_FOLLOW) == 0;
    if (!isLinked && errno == EEXIST)
        return false;
    if (!isLinked && !copyToNew(file, static_cast<std::uint64_t>(status.st_size), source, target, meter))
        return false;
    unlink(from.c_str()); // if this fails, the file just keeps its old name, too
    return true;
}

} // namespace ZipUtils
