#pragma once

#include <vector>

#include "OrvHost/OrvHostExport.h"
#include "OrvHost/update/CatalogFolders.h"
#include "OrvLibrary/host/fileString.h"

namespace OrvHost {

/// Puts new catalogs in their places for a host: what an update hands over with "onCatalogUpdatedEvent", and
/// what an update that died had left. The destination is replaced by one rename, so at every moment it is
/// whole, the old catalog or the new one. One object serves one update, on the thread of the host object.
class ORVHOST_EXPORT CatalogSwapper
{
public:
    /// To be called before an update starts, which empties the download folders: swaps in every whole
    /// catalog that waits there. Nobody else may be updating meanwhile.
    void recover();
    /// Swaps one catalog in.
    /// @return false when that failed; the failure is remembered for `forgetFailed`
    bool swapIn(const fileString& destination, const fileString& newFile);
    /// To be called after the update's closing invocation: takes the lines of catalogs that could not be
    /// swapped in out of the hash files, so that the next update fetches them again.
    /// @return the destinations whose line could not be taken out
    std::vector<fileString> forgetFailed() const;

    /// The destinations that got their new catalogs, in order.
    const std::vector<fileString>& swappedIn() const { return mSwappedIn; }
    /// The destinations that did not.
    const std::vector<fileString>& failed() const { return mFailed; }

private:
    void recoverCatalog(const fileString& destination, const fileString& newFile);

    std::vector<fileString> mSwappedIn;
    std::vector<fileString> mFailed;
};

} // namespace OrvHost
