#pragma once

#include <set>
#include <string>
#include <vector>

#include "OrvHost/OrvHostExport.h"
#include "OrvHost/history/CatalogHistory.h"
#include "OrvHost/history/CatalogNews.h"
#include "OrvHost/update/CatalogFolders.h"
#include "OrvLibrary/host/fileString.h"

namespace OrvHost {

/// Puts new catalogs in their places for a host: those that an update hands over with
/// "onCatalogUpdatedEvent", and those that an update left behind when it died. The destination is replaced by
/// one rename, so at every moment it is whole, the old catalog or the new one. A file that is no sound
/// database is not put in place. One object serves one update, on the thread of the host object.
class ORVHOST_EXPORT CatalogSwapper
{
public:
    /// A catalog that stayed as it was.
    struct Failure
    {
        fileString destination;
        std::string reason; ///< for people
    };

    CatalogSwapper() = default;
    /// @param bounds how much of the former catalogs is kept
    explicit CatalogSwapper(const CatalogHistory::Bounds& bounds) : mHistory(bounds) {}

    /// Whether new catalogs have to be sound databases, which they have to at first. Catalogs of another kind
    /// need it off.
    void setDatabaseCheck(bool isOn) { mChecksDatabases = isOn; }

    /// To be called before an update starts, because the update empties the download folders: swaps in every
    /// whole catalog that waits there, and notes the versions that the update may replace. Nobody else may be
    /// updating meanwhile.
    /// @param held is left as it is
    void recover(const std::set<CatalogPlace>& held = {});
    /// Swaps one catalog in. A new file that is no database is removed. The former catalog goes into the
    /// history; where that fails, it stays in its place.
    /// @return false when that failed; the failure is remembered for `forgetFailed`
    bool swapIn(const fileString& destination, const fileString& newFile);
    /// To be called after the update's closing invocation: takes the lines of catalogs that could not be
    /// swapped in out of the hash files, so that the next update fetches them again.
    /// @return the destinations whose line could not be taken out
    std::vector<fileString> forgetFailed() const;

    /// To be called at the end of the update: bounds the history.
    void settleHistory() const { mHistory.settle(); }
    /// To be called before that: what is new in the catalogs that were swapped in.
    std::vector<CatalogChanges> takeNews() { return mNews.take(); }

    /// The destinations that got their new catalogs, in order.
    const std::vector<fileString>& swappedIn() const { return mSwappedIn; }
    /// Those that did not, in order.
    const std::vector<Failure>& failed() const { return mFailed; }

private:
    void recoverCatalog(const fileString& destination, const fileString& newFile);
    bool swapIn(const fileString& destination, const std::string& formerTag, const fileString& newFile);
    std::string replace(const fileString& destination, const std::string& formerTag,
                        const fileString& newFile);

    CatalogHistory mHistory;
    NewsCollector mNews;
    bool mChecksDatabases = true;
    std::vector<fileString> mSwappedIn;
    std::vector<Failure> mFailed;
};

} // namespace OrvHost
