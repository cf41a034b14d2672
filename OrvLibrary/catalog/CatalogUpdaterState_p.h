#pragma once

#include <cstdint>
#include <string>

#include "OrvLibrary/host/ThreadMutex.h"

/// Every process-wide variable of the catalog update. Only one run may go on at a time: apart from the cancel
/// flag, the variables are set by an updater's constructor, then belong to the thread of its run.
namespace LibraryCatalogUpdate {

/// The address that redirects to the web service; set by every updater's constructor.
extern std::string kContentRedirect;
/// The web service's query address, resolved once from `kContentRedirect`; empty until then. Cleared by every
/// updater's constructor.
extern std::string kApiEndpoint;

/// Kilobytes (of 1000 bytes) that the run has to download.
extern std::uint64_t kbytes_to_read;
/// Kilobytes of the files that the run is done with.
extern std::uint64_t total_kbytes_read;
/// Kilobytes of the current file so far.
extern std::uint64_t file_kbytes_read;
/// Progress calls in a row without a new byte.
extern std::int32_t diff_zero_count;
/// Progress calls since the gauge was last told.
extern std::uint64_t progress_update_count;

/// Whether the run is cancelled. The only state that threads share: touched under its mutex alone, which is
/// held for that one access.
extern bool kill_download;
extern ThreadMutex kill_download_mutex;

bool isDownloadKilled();
void setDownloadKilled(bool killed);

/// The sum, or the largest number where it would wrap.
std::uint64_t addSaturating(std::uint64_t left, std::uint64_t right);

} // namespace LibraryCatalogUpdate
