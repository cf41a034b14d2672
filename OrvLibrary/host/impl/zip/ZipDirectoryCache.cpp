#include "OrvLibrary/host/impl/zip/ZipDirectoryCache_p.h"

#include <array>
#include <ctime>
#include <utility>

namespace ZipUtils {

namespace {

struct Cached
{
    struct stat file = {};
    std::shared_ptr<const ZipDirectory> directory;
};

/// Two entries, because a merge reads two archives in turns.
struct Cache
{
    std::mutex mutex;
    std::array<Cached, 2> newestFirst;
};

/// Never destroyed: a thread may still read when the process ends.
Cache& cache()
{
    static Cache& instance = *new Cache;
    return instance;
}

bool isSameTime(const timespec& a, const timespec& b)
{
    return a.tv_sec == b.tv_sec && a.tv_nsec == b.tv_nsec;
}

bool isSameFile(const struct stat& a, const struct stat& b)
{
    return a.st_dev == b.st_dev && a.st_ino == b.st_ino && a.st_size == b.st_size &&
           isSameTime(a.st_mtim, b.st_mtim) && isSameTime(a.st_ctim, b.st_ctim);
}

/// Whether the next change would change the file's times. File systems count time in steps of up to two
/// seconds.
bool isSettled(const struct stat& file)
{
    constexpr std::time_t kStep = 3;
    return std::time(nullptr) - file.st_ctim.tv_sec > kStep &&
           std::time(nullptr) - file.st_mtim.tv_sec > kStep;
}

} // namespace

std::shared_ptr<const ZipDirectory> DirectoryCache::find(const struct stat& file)
{
    const std::lock_guard<std::mutex> lock(cache().mutex);
    for (const Cached& cached : cache().newestFirst) {
        if (cached.directory && isSameFile(cached.file, file))
            return cached.directory;
    }
    return nullptr;
}

void DirectoryCache::keep(const struct stat& file, std::shared_ptr<const ZipDirectory> directory)
{
    constexpr std::size_t kMostBytes = 16U << 20U;
    if (directory->bytes.size() > kMostBytes || !isSettled(file))
        return;
    Cached replaced{file, std::move(directory)}; // the old content is freed after the lock is released
    const std::lock_guard<std::mutex> lock(cache().mutex);
    for (Cached& cached : cache().newestFirst)
        std::swap(cached, replaced);
}

} // namespace ZipUtils
