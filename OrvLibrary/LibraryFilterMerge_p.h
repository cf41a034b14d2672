#pragma once

#include <map>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "OrvLibrary/LibraryFilter.h"

/// Adds filters to a list so that no filter is in it twice and new ids and names are unique. The time for
/// each filter does not depend on the length of the list.
class LibraryFilterMerge
{
public:
    /// @param merged the list to extend; must outlive this object, which must be the only one to change it
    explicit LibraryFilterMerge(std::vector<LibraryFilter>& merged);

    /// Appends the filter with a new id and a free name. Does nothing if the list already has a filter with
    /// the same name and the same databases in the same order.
    void add(const LibraryFilter& filter);

private:
    /// Two filters with equal content are the same filter.
    using Content = std::pair<std::string, std::vector<std::string>>;

    static Content contentOf(const LibraryFilter& filter);
    void append(const LibraryFilter& filter);
    long takeId();
    std::string takeName(const std::string& wanted);

    std::vector<LibraryFilter>& mMerged;
    std::set<Content> mContents;
    std::set<long> mUsedIds;
    std::set<std::string> mUsedNames;
    long mCounter = 0; ///< all ids below are taken
    std::map<std::string, long>
        mNextSuffix; ///< for each name: all suffixes below are taken; 0 is the name itself
};
