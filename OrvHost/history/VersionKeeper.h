#pragma once

#include <mutex>
#include <string>
#include <vector>

#include "OrvHost/OrvHostExport.h"
#include "OrvHost/history/CatalogHistory.h"
#include "OrvHost/update/ForwardingCurl.h"

namespace OrvHost {

/// Stands between an update and the download service, for the length of one run. The library itself puts
/// archives of referenced files in their places, so the host keeps the former one here, just before the new
/// one is downloaded. May be used from any thread.
class ORVHOST_EXPORT VersionKeeper : public ForwardingCurl
{
public:
    /// @param next not owned
    explicit VersionKeeper(Curl& next) : ForwardingCurl(next) {}

    using ForwardingCurl::download_to_location;
    bool download_to_location(const std::string& url, const fileString& target,
                              const std::vector<std::string>& headerLines, void* context,
                              ProgressFunction progress, std::string& reason, int& errorNumber) override;

private:
    bool keepArchive(const std::string& url, std::string& reason);

    std::mutex mMutex;
    CatalogHistory mHistory; ///< guarded by mMutex
};

} // namespace OrvHost
