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

/// The new, changed and gone items of one catalog.
struct ORVHOST_EXPORT CatalogChanges
{
    CatalogPlace place;
    CatalogItems::Changes items;
};

/// The changes that updates made, in "catalog-news.json" below the root; docs/formats/catalog-news.md
/// describes the file. To be written under the lock of an update.
namespace CatalogNews {

/// The changes since a run; several changes of one item are joined into one.
/// @param run the number of a run; none for the last update that changed an item
/// @return by place; empty when nothing changed
ORVHOST_EXPORT std::vector<CatalogChanges> since(const fileString& root, std::optional<std::int64_t> run);
/// Adds what the update changed that is going on, under its number in the list of runs; nothing when nothing
/// changed. The last 50 such runs are kept, and 16 MB of them.
/// @throws std::runtime_error when the file cannot be written; it is then as it was
ORVHOST_EXPORT void add(const fileString& root, const QDateTime& time,
                        const std::vector<CatalogChanges>& changes);
/// Whether a run of this number is known.
ORVHOST_EXPORT bool isKnown(const fileString& root, std::int64_t run);

} // namespace CatalogNews

/// Compares catalogs while an update goes on, on a thread of its own, so that the host's thread need not
/// wait. Used by one thread.
class ORVHOST_EXPORT NewsCollector
{
public:
    NewsCollector() { mPool.setMaxThreadCount(1); }
    ~NewsCollector() { mPool.waitForDone(); }
    NewsCollector(const NewsCollector&) = delete;
    NewsCollector& operator=(const NewsCollector&) = delete;

    /// Begins to compare what is in a place with what was there. Both stay as they are until `take`.
    /// @param former empty when nothing was there
    void compare(const CatalogPlace& place, const fileString& former);
    /// Hands out the differences, in the order of the places, and waits for comparisons that go on. Catalogs
    /// that cannot be read, and those without a difference, are left out.
    std::vector<CatalogChanges> take();

private:
    std::mutex mMutex;
    std::vector<CatalogChanges> mFound; ///< guarded by mMutex
    QThreadPool mPool;                  ///< last: its thread ends first
};

} // namespace OrvHost
