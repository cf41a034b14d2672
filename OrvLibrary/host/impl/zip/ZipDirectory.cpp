#include "OrvLibrary/host/impl/zip/ZipDirectory_p.h"

#include <algorithm>

namespace ZipUtils {

const ZipEntry* ZipDirectory::find(std::string_view name) const
{
    std::call_once(mNamesAreKnown, [this] {
        // Build the whole map first. If memory runs out halfway, an incomplete map must not stay.
        std::unordered_map<std::string_view, std::size_t> byName;
        for (std::size_t i = 0; i < entries.size(); ++i)
            byName[entries[i].name] = i;
        mByName.swap(byName);
    });
    const auto found = mByName.find(name);
    return found == mByName.end() ? nullptr : &entries[found->second];
}

std::uint64_t ZipDirectory::prefixSize() const
{
    std::uint64_t first = start;
    for (const ZipEntry& entry : entries)
        first = std::min(first, entry.headerOffset);
    return first;
}

} // namespace ZipUtils
