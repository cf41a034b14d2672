#pragma once

namespace LibraryCatalogUpdate {

class CatalogEvents;

/// The context of a download's progress function.
struct CatalogDownload
{
    /// The number of bytes at the last call.
    double lastBytes = 0;
    /// The host object; null if nobody watches.
    CatalogEvents* events = nullptr;
};

/// The progress function for downloading a catalog. Aborts the download after a cancel, and after 600 calls
/// in a row without a new byte. Updates the gauge from time to time. Throws nothing.
/// @param context the `CatalogDownload`
/// @return 0 to go on, 1 to abort
int download_progress_callback(void* context, double downloadTotal, double downloaded, double uploadTotal,
                               double uploaded);

} // namespace LibraryCatalogUpdate
