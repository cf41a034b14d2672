#pragma once

#include <cstdint>
#include <mutex>
#include <optional>
#include <vector>

#include <QDateTime>
#include <QThreadPool>

#include "OrvHost/OrvHostExport.h"
#include "OrvHost/history/CatalogItems.h"
#include "OrvHost/history/CatalogPlace.h"

namespace OrvHost {

/// The new, changed and removed items of one catalog.
struct ORVHOST_EXPORT CatalogChanges
{
    CatalogPlace place;
    CatalogItems::Changes items;
};

/// The changes made by updates, stored in "catalog-news.json" below the root; docs/formats/catalog-news.md
/// describes the file. Writing needs the lock of an update.
namespace CatalogNews {

/// The changes since a run. Several changes of one item are combined.
/// @param run the number of a run; without it, the changes of the last update that changed an item
/// @return by place; empty if nothing has changed
ORVHOST_EXPORT std::vector<CatalogChanges> since(const fileString& root, std::optional<std::int64_t> run);
/// The number of the last update with changes; 0 if there is none.
ORVHOST_EXPORT std::int64_t lastRun(const fileString& root);
/// Adds the changes of the current update, under its number in the list of runs. Does nothing if there are
/// none. Keeps the last 50 runs with changes, and at most 16 MB.
/// @throws std::runtime_error if the file cannot be written; it is then unchanged
ORVHOST_EXPORT void add(const fileString& root, const QDateTime& time,
                        const std::vector<CatalogChanges>& changes);
/// Whether there is a run with this number.
ORVHOST_EXPORT bool isKnown(const fileString& root, std::int64_t run);

} // namespace CatalogNews

/// Compares catalogs during an update on its own thread, so that the host's thread need not wait. Used by one
/// thread.
class ORVHOST_EXPORT NewsCollector
{
public:
    NewsCollector() { mPool.setMaxThreadCount(1); }
    ~NewsCollector() { mPool.waitForDone(); }
    NewsCollector(const NewsCollector&) = delete;
    NewsCollector& operator=(const NewsCollector&) = delete;

    /// Begins to compare the file in a place with the former one. Both must not change until `take`.
    /// @param former empty if there was no file
    void compare(const CatalogPlace& place, const fileString& former);
    /// Waits for all comparisons and returns the differences, ordered by place. Leaves out catalogs that
    /// cannot be read or have no difference.
    std::vector<CatalogChanges> take();

private:
    std::mutex mMutex;
    std::vector<CatalogChanges> mFound; ///< guarded by mMutex
    QThreadPool mPool;                  ///< last, so that its thread ends before the others are destroyed
};

} // namespace OrvHost
