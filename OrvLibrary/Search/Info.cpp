#include "OrvLibrary/Search/Info.h"

namespace Library {
namespace Search {

Info::Info() = default;

Info::Info(unsigned long categoryMask)
{
    // Deliberate: in the order of the table, not of the numbers.
    // Kept by: Info.listsCategoriesInTheOrderOfTheTable
    for (const int category : gLibCatMap) {
        if (categoryMask & 1UL << category)
            categories.push_back(category);
    }
}

bool Info::empty() const
{
    return terms.empty() && categories.empty() && idRestrictionsA.empty() && idRestrictionsB.empty() &&
           text.empty();
}

void copyRestrictions(Info& dst, const Info& src)
{
    if (&dst == &src)
        return;
    if (!src.idRestrictionsA.empty())
        dst.idRestrictionsA = src.idRestrictionsA;
    if (!src.categories.empty())
        dst.categories = src.categories;
    if (!src.idRestrictionsB.empty())
        dst.idRestrictionsB = src.idRestrictionsB;
}

} // namespace Search
} // namespace Library
