#include "OrvLibrary/host/impl/files/TempNames_p.h"

#include <algorithm>
#include <filesystem>
#include <random>

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include "OrvLibrary/host/ThreadMutex.h"
#include "OrvLibrary/host/impl/files/FileHandle_p.h"

namespace host {

namespace {

constexpr char kPrefix[] = "orv-";
constexpr char kDigits[] = "0123456789abcdef";
constexpr std::size_t kDigitCount = 24;

/// Whether it is a temporary name, or the name of a file beside a temporary one.
bool isTempName(std::string name)
{
    if (name.front() == '.')
        name.erase(0, 1);
    if (name.compare(0, sizeof kPrefix - 1, kPrefix) != 0)
        return false;
    const std::size_t end = name.find_first_not_of(kDigits, sizeof kPrefix - 1);
    return std::min(end, name.size()) == sizeof kPrefix - 1 + kDigitCount;
}

void removeLeftovers(const std::string& folder)
{
    namespace fs = std::filesystem;
    std::error_code failure;
    for (fs::directory_iterator entry(folder, failure), end; !failure && entry != end;
         entry.increment(failure)) {
        if (isTempName(entry->path().filename().native()))
            unlink(entry->path().c_str()); // does not remove folders
    }
}

/// The folder that this process uses. Never destroyed, because a thread may still use it when the process
/// ends.
struct Claim
{
    ThreadMutex mutex;
    FileHandle folder;
};

Claim& claim()
{
    static Claim& sClaim = *new Claim;
    return sClaim;
}

} // namespace

std::string makeTempName(const std::string& extension)
{
    std::random_device device;
    std::string name = kPrefix;
    for (std::size_t i = 0; i < kDigitCount; ++i)
        name += kDigits[device() & 15];
    return name + extension;
}

void claimTempFolder(const std::string& folder)
{
    Claim& current = claim();
    const ThreadLockGuard<ThreadMutex> guard(current.mutex);
    if (current.folder && namesFile(folder, current.folder.get()))
        return;
    current.folder = openFile(folder, O_RDONLY | O_DIRECTORY);
    if (!current.folder)
        return;
    if (tryLock(current.folder.get(), LOCK_EX) == Lock::Held)
        removeLeftovers(folder);
    waitForLock(current.folder.get(), LOCK_SH, std::chrono::steady_clock::now() + kLockWait);
}

} // namespace host
