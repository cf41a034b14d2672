#include "OrvHost/history/VersionKeeper.h"

#include "OrvHost/history/CatalogAddress.h"

namespace OrvHost {

bool VersionKeeper::download_to_location(const std::string& url, const fileString& target,
                                         const std::vector<std::string>& headerLines, void* context,
                                         ProgressFunction progress, std::string& reason, int& errorNumber)
{
    return keepArchive(url, reason) && ForwardingCurl::download_to_location(url, target, headerLines, context,
                                                                            progress, reason, errorNumber);
}

bool VersionKeeper::keepArchive(const std::string& url, std::string& reason)
{
    const CatalogPlace archive = CatalogAddress::archiveOf(url);
    if (archive.name.empty())
        return true;
    const std::lock_guard<std::mutex> lock(mMutex);
    return mHistory.keep(archive, reason);
}

} // namespace OrvHost
