#include "OrvLibrary/LibraryFilterMerge_p.h"

LibraryFilterMerge::LibraryFilterMerge(std::vector<LibraryFilter>& merged) : mMerged(merged)
{
    for (const LibraryFilter& filter : merged) {
        mContents.insert(contentOf(filter));
        mUsedIds.insert(filter.getFilterId());
        mUsedNames.insert(filter.getFilterName());
    }
}

LibraryFilterMerge::Content LibraryFilterMerge::contentOf(const LibraryFilter& filter)
{
    return {filter.getFilterName(), filter.getDatabaseIds()};
}

void LibraryFilterMerge::add(const LibraryFilter& filter)
{
    if (mContents.count(contentOf(filter)) > 0)
        return;
    const long id = takeId();
    append(LibraryFilter(takeName(filter.getFilterName()), id, filter.getDatabaseIds()));
}

void LibraryFilterMerge::append(const LibraryFilter& filter)
{
    mContents.insert(contentOf(filter));
    mMerged.push_back(filter);
}

/// Deliberate: a filter never keeps its own id, even if it is free.
/// Kept by: LibraryFilterMerge.workedCases
long LibraryFilterMerge::takeId()
{
    while (!mUsedIds.insert(mCounter).second)
        ++mCounter;
    return mCounter;
}

std::string LibraryFilterMerge::takeName(const std::string& wanted)
{
    for (long& suffix = mNextSuffix[wanted];; ++suffix) {
        const std::string candidate = suffix == 0 ? wanted : wanted + " " + std::to_string(suffix);
        if (mUsedNames.insert(candidate).second)
            return candidate;
    }
}
