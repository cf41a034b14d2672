#include "OrvLibrary/host/impl/zip/ZipFormat_p.h"

namespace ZipUtils {

namespace {

/// The size of the first field in `extra`, with its header; 0 if the field is cut off.
std::size_t firstFieldSize(std::string_view extra)
{
    if (extra.size() < 4)
        return 0;
    const std::size_t size = 4U + get16(extra.data() + 2);
    return size <= extra.size() ? size : 0;
}

} // namespace

std::string_view findExtraField(std::string_view extra, std::uint16_t id)
{
    while (const std::size_t size = firstFieldSize(extra)) {
        if (get16(extra.data()) == id)
            return extra.substr(4, size - 4);
        extra.remove_prefix(size);
    }
    return {};
}

std::string withoutExtraField(std::string_view extra, std::uint16_t id)
{
    std::string kept;
    while (const std::size_t size = firstFieldSize(extra)) {
        if (get16(extra.data()) != id)
            kept.append(extra.substr(0, size));
        extra.remove_prefix(size);
    }
    return kept.append(extra);
}

} // namespace ZipUtils
