#pragma once

#include <map>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "OrvLibrary/LibraryFilter.h"

/// Adds filters to a list, one after the other, so that each is there once and ids and names that it adds are
/// its own. No step looks through the list.
class LibraryFilterMerge
{
public:
    /// @param merged the list that is added to; must outlive the object and is changed by it alone
    explicit LibraryFilterMerge(std::vector<LibraryFilter>& merged);

    /// Appends the filter under a new id and a free name, unless the list holds one of the same name and the
    /// same databases in the same order.
    void add(const LibraryFilter& filter);

private:
    /// Two filters are the same when these are equal.
    using Content = std::pair<std::string, std::vector<std::string>>;

    static Content contentOf(const LibraryFilter& filter);
    void append(const LibraryFilter& filter);
    long takeId();
    std::string takeName(const std::string& wanted);

    std::vector<LibraryFilter>& mMerged;
    std::set<Content> mContents;
    std::set<long> mUsedIds;
    std::set<std::string> mUsedNames;
    long mCounter = 0; ///< every id below is used
    std::map<std::string, long>
        mNextSuffix; ///< by wanted name: every suffix below is used; 0 is the bare name
};
