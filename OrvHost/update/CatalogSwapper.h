#pragma once

#include <map>
#include <mutex>
#include <set>
#include <string>
#include <vector>

#include "OrvHost/OrvHostExport.h"
#include "OrvHost/history/CatalogHistory.h"
#include "OrvHost/history/CatalogNews.h"
#include "OrvHost/update/CatalogFolders.h"
#include "OrvLibrary/host/fileString.h"

namespace OrvHost {

/// Puts new catalogs into place for a host: those that an update passes on with "onCatalogUpdatedEvent", and
/// those that a killed update left behind. Each destination is replaced by one rename, so it is always a
/// complete catalog, old or new. A file that is not a sound database is refused. One object serves one
/// update. One thread at a time may use it, except for `examine`.
class ORVHOST_EXPORT CatalogSwapper
{
public:
    /// A catalog that could not be replaced.
    struct Failure
    {
        fileString destination;
        std::string reason; ///< for people
    };

    CatalogSwapper() = default;
    /// @param bounds how many former catalogs to keep
    explicit CatalogSwapper(const CatalogHistory::Bounds& bounds) : mHistory(bounds) {}

    /// Whether new catalogs must be sound databases; at first they must. Turn it off for catalogs of another
    /// kind.
    void setDatabaseCheck(bool isOn) { mChecksDatabases = isOn; }

    /// Call it before an update starts, because the update empties the download folders. Puts every complete
    /// catalog in them into place, and notes the current versions of all catalogs. No other update may be
    /// active.
    /// @param held these places stay unchanged
    void recover(const std::set<CatalogPlace>& held = {});
    /// Checks a new file, so that `swapIn` need not and takes no longer than its rename. May be called on any
    /// thread. `CatalogUpdateRun` calls it before the host object hears of the file.
    void examine(const fileString& newFile);
    /// Puts one catalog into place. A new file that is not a database is removed. The former catalog moves to
    /// the history; if this fails, it stays in place.
    /// @return false after a failure, which is remembered for `forgetFailed`
    bool swapIn(const fileString& destination, const fileString& newFile);
    /// Call it after the update's closing call. Removes the hash lines of catalogs that could not be put into
    /// place, so that the next update downloads them again.
    /// @return the destinations whose line could not be removed
    std::vector<fileString> forgetFailed() const;

    /// Call it at the end of the update: removes old versions from the history.
    void settleHistory() const { mHistory.settle(); }
    /// Call it before that: what is new in the catalogs that were put into place.
    std::vector<CatalogChanges> takeNews() { return mNews.take(); }

    /// The destinations that got new catalogs, in their order.
    const std::vector<fileString>& swappedIn() const { return mSwappedIn; }
    /// The destinations that did not, in their order.
    const std::vector<Failure>& failed() const { return mFailed; }

private:
    void recoverCatalog(const fileString& destination, const fileString& newFile);
    bool swapIn(const fileString& destination, const std::string& formerTag, const fileString& newFile);
    std::string replace(const fileString& destination, const std::string& formerTag,
                        const fileString& newFile);
    std::string problemOf(const fileString& newFile);

    CatalogHistory mHistory;
    NewsCollector mNews;
    bool mChecksDatabases = true;
    std::mutex mMutex;
    std::map<fileString, std::string> mExamined; ///< guarded by mMutex; the problem of each new file
    std::vector<fileString> mSwappedIn;
    std::vector<Failure> mFailed;
};

} // namespace OrvHost
