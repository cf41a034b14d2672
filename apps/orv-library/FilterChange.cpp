#include "apps/orv-library/FilterChange.h"

#include "OrvLibrary/host/FileUtils.h"
#include "apps/orv-library/Command.h"

namespace {

/// A name beside `path` that nothing has yet.
fileString freeNameBeside(const fileString& path)
{
    const fileString name = path + fileString(".unreadable");
    fileString candidate = name;
    for (int n = 2; candidate.pathExists(); ++n)
        candidate = name + fileString("." + std::to_string(n));
    return candidate;
}

void keepUnreadable(const fileString& path)
{
    const fileString copy = freeNameBeside(path);
    if (!FileUtils::copyFile(path, copy, false))
        throw CommandFailure("cannot keep the unreadable filter file as " + copy.toNativeString());
    Console::complain(path.toNativeString() + " cannot be read as a whole; it is kept as " +
                      copy.toNativeString());
}

} // namespace

FilterChange::FilterChange(Session& session)
    : mHost(session.host()), mLock("filters"), mFilters(LibraryFilterManager::getLibraryFilterManager())
{
}

void FilterChange::save()
{
    const fileString path = mFilters.getFilterFullname();
    prepareToOverwrite(path);
    // Not the manager's own way of saving, which keeps an empty list back and does not say whether it worked.
    if (!LibraryFilterManager::saveFiltersToFile(path, mFilters.getLibraryFilters(),
                                                 mFilters.getCurrentFilterId()))
        throw CommandFailure("cannot write " + path.toNativeString());
    mFilters.loadFilters();
}

void FilterChange::prepareToOverwrite(const fileString& path)
{
    if (!FileUtils::canWriteFile(path))
        throw CommandFailure("cannot write " + path.toNativeString());
    if (path.pathExists() && !LibraryFilterManager::isWhollyReadable(path))
        keepUnreadable(path);
}
