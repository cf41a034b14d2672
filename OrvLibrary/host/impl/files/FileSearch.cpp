#include "OrvLibrary/host/FileSearch.h"

#include "OrvLibrary/host/impl/files/Installed_p.h"

namespace {

/// The default keeps no cache, so there is nothing to drop.
class UncachedFileSearch : public FileSearch
{
public:
    void resetFileSearch(const fileString&) override {}
};

host::Installed<FileSearch> gInstalled(host::immortal<FileSearch, UncachedFileSearch>);

} // namespace

FileSearch::FileSearch() = default;
FileSearch::~FileSearch() = default;

FileSearch& FileSearch::get()
{
    return gInstalled.get();
}

FileSearch* FileSearch::install(FileSearch* service)
{
    return gInstalled.install(service);
}
