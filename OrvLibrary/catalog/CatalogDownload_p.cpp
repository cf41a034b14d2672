#include "OrvLibrary/catalog/CatalogDownload_p.h"

#include <algorithm>

#include "OrvLibrary/catalog/CatalogEvents_p.h"
#include "OrvLibrary/catalog/CatalogUpdaterState_p.h"
#include "OrvLibrary/host/StringUtils.h"

namespace LibraryCatalogUpdate {

namespace {

/// The next call without a new byte aborts. While nothing arrives, the download service calls ten times a
/// second, so a stall lasts about a minute.
constexpr std::int32_t kLastSilentCall = 599;
/// The gauge is updated on the next call. This keeps the number of queued events small in a fast transfer.
constexpr std::uint64_t kCallsBetweenGauges = 501;
constexpr double kBytesPerKilobyte = 1000.0;

bool isStalled(double newBytes)
{
    if (newBytes != 0) {
        diff_zero_count = 0;
        return false;
    }
    if (diff_zero_count > kLastSilentCall)
        return true;
    ++diff_zero_count;
    return false;
}

/// Deliberate: the count continues over files and runs, so the first update in a file may come early.
/// Kept by: CatalogDownloadProgress.theGaugesCountGoesOnWithTheNextDownload
void tellGauge(CatalogEvents* events)
{
    if (progress_update_count < kCallsBetweenGauges) {
        ++progress_update_count;
        return;
    }
    progress_update_count = 0;
    if (events)
        events->setValueInGauge(addSaturating(file_kbytes_read, total_kbytes_read));
}

} // namespace

int download_progress_callback(void* context, double /*downloadTotal*/, double downloaded,
                               double /*uploadTotal*/, double /*uploaded*/)
try {
    CatalogDownload& download = *static_cast<CatalogDownload*>(context);
    if (isDownloadKilled() || isStalled(downloaded - download.lastBytes))
        return 1;
    download.lastBytes = downloaded;
    file_kbytes_read = std::max<std::int64_t>(iRoundoff(downloaded / kBytesPerKilobyte), 0);
    tellGauge(download.events);
    return 0;
} catch (...) {
    return 0; // A failed update of the gauge must not end the download.
}

} // namespace LibraryCatalogUpdate
