#include "OrvLibrary/catalog/CatalogUpdaterState_p.h"

#include <limits>

namespace LibraryCatalogUpdate {

std::string kContentRedirect;
std::string kApiEndpoint;

std::uint64_t kbytes_to_read = 0;
std::uint64_t total_kbytes_read = 0;
std::uint64_t file_kbytes_read = 0;
std::int32_t diff_zero_count = 0;
std::uint64_t progress_update_count = 0;

bool kill_download = false;
ThreadMutex kill_download_mutex;

bool isDownloadKilled()
{
    const ThreadLockGuard<ThreadMutex> lock(kill_download_mutex);
    return kill_download;
}

void setDownloadKilled(bool killed)
{
    const ThreadLockGuard<ThreadMutex> lock(kill_download_mutex);
    kill_download = killed;
}

std::uint64_t addSaturating(std::uint64_t left, std::uint64_t right)
{
    constexpr std::uint64_t kLargest = std::numeric_limits<std::uint64_t>::max();
    return right > kLargest - left ? kLargest : left + right;
}

} // namespace LibraryCatalogUpdate
