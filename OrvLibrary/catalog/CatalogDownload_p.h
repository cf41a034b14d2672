#pragma once

namespace LibraryCatalogUpdate {

class CatalogEvents;

/// The context of a download's progress function.
struct CatalogDownload
{
    /// The bytes downloaded at the last call.
    double lastBytes = 0;
    /// The host object; null when nobody looks.
    CatalogEvents* events = nullptr;
};

/// The progress function of a catalog's download. Ends it after a cancel, and when 600 calls in a row brought
/// no new byte; tells the gauge now and then. Lets no exception out.
/// @param context the download's `CatalogDownload`
/// @return 0 to go on, 1 to abort
int download_progress_callback(void* context, double downloadTotal, double downloaded, double uploadTotal,
                               double uploaded);

} // namespace LibraryCatalogUpdate
