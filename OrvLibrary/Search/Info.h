#pragma once

#include <array>
#include <set>
#include <string>
#include <vector>

#include "OrvLibrary/OrvLibraryExport.h"

namespace Library {
namespace Search {

/// The content categories in the order in which they are listed.
constexpr std::array<int, 26> gLibCatMap = {20, 19, 10, 5,  6, 12, 7,  4,  2,  16, 0, 17, 1,
                                            18, 14, 9,  23, 8, 15, 11, 21, 22, 13, 3, 24, 25};

/// A library search: what is looked for, and the restrictions that narrow it. A plain value; what the flags
/// and the two sets of ids mean is the host's business.
struct ORVLIBRARY_EXPORT Info
{
    Info();
    /// @param categoryMask bit `c` stands for category `c`; bits from 26 up are ignored
    explicit Info(unsigned long categoryMask);

    /// Whether nothing is looked for and nothing is restricted, whatever the flags say.
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

/// Replaces each restriction of `dst` (the categories and both sets of ids) that `src` has; one that is empty
/// in `src` stays, so that no restriction is ever cleared.
ORVLIBRARY_EXPORT void copyRestrictions(Info& dst, const Info& src);

} // namespace Search
} // namespace Library
