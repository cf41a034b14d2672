#pragma once

#include <cstdint>
#include <string>

#include "OrvLibrary/host/ThreadMutex.h"

/// All global variables of the update. Only one run may be active at a time. An updater's constructor sets
/// the variables; after that they belong to the thread of the run, except for the cancel flag.
namespace LibraryCatalogUpdate {

/// The address that redirects to the web service. Set by the constructor of each updater.
extern std::string kContentRedirect;
/// The web service's address, found once by following `kContentRedirect`; empty until then. Cleared by the
/// constructor of each updater.
extern std::string kApiEndpoint;

/// The kilobytes (of 1000 bytes) to download in this run.
extern std::uint64_t kbytes_to_read;
/// The kilobytes of all files finished in this run.
extern std::uint64_t total_kbytes_read;
/// The kilobytes received of the current file.
extern std::uint64_t file_kbytes_read;
/// The number of progress calls in a row without a new byte.
extern std::int32_t diff_zero_count;
/// The number of progress calls since the gauge was last updated.
extern std::uint64_t progress_update_count;

/// Whether the run is cancelled. The only variable shared by several threads. Use it only under its mutex,
/// and hold the mutex only for this.
extern bool kill_download;
extern ThreadMutex kill_download_mutex;

bool isDownloadKilled();
void setDownloadKilled(bool killed);

/// The sum, or the largest number if the sum does not fit.
std::uint64_t addSaturating(std::uint64_t left, std::uint64_t right);

} // namespace LibraryCatalogUpdate
