#include "OrvLibrary/host/FileSearch.h"

#include <atomic>

namespace {

/// Caches nothing, so that there is nothing to drop.
class UncachedFileSearch : public FileSearch
{
public:
    void resetFileSearch(const fileString&) override {}
};

std::atomic<FileSearch*> installedService{nullptr};

} // namespace

FileSearch::FileSearch() = default;
FileSearch::~FileSearch() = default;

FileSearch& FileSearch::get()
{
    static UncachedFileSearch defaultService;
    FileSearch* service = installedService.load();
    return service ? *service : defaultService;
}

FileSearch* FileSearch::install(FileSearch* service)
{
    return installedService.exchange(service);
}
