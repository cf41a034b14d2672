#pragma once

#include <array>
#include <set>
#include <string>
#include <vector>

#include "OrvLibrary/OrvLibraryExport.h"

namespace Library {
namespace Search {

/// The content categories, in the order of the list.
constexpr std::array<int, 26> gLibCatMap = {20, 19, 10, 5,  6, 12, 7,  4,  2,  16, 0, 17, 1,
                                            18, 14, 9,  23, 8, 15, 11, 21, 22, 13, 3, 24, 25};

/// A library search: the text to look for and the restrictions. A plain value. Only the host knows what the
/// flags and the two sets of ids mean.
struct ORVLIBRARY_EXPORT Info
{
    Info();
    /// @param categoryMask bit `c` stands for category `c`; bits above 25 are ignored
    explicit Info(unsigned long categoryMask);

    /// Whether there is no text to look for and no restriction. The flags do not count.
    bool empty() const;

    std::vector<std::string> terms;
    std::vector<int> categories; ///< 0 to 25, in the order of `gLibCatMap`
    std::set<long> idRestrictionsA;
    std::set<long> idRestrictionsB;
    bool flag1 = false;
    bool flag2 = true;
    bool flag3 = true;
    bool flag4 = false;
    std::string text;
};

/// Copies each restriction that `src` has (the categories and both sets of ids) to `dst`. A restriction that
/// is empty in `src` stays in `dst`, so this never removes one.
ORVLIBRARY_EXPORT void copyRestrictions(Info& dst, const Info& src);

} // namespace Search
} // namespace Library
