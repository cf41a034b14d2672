#include "apps/catalog-service/Preconditions.h"

#include <algorithm>
#include <charconv>

namespace {

std::string trimmed(const std::string& text)
{
    const std::size_t first = text.find_first_not_of(" \t");
    if (first == std::string::npos)
        return {};
    return text.substr(first, text.find_last_not_of(" \t") - first + 1);
}

/// Reads a plain decimal number; -1 for other texts.
std::int64_t number(const std::string& text)
{
    std::int64_t value = -1;
    const char* const end = text.data() + text.size();
    const bool startsWithDigit = !text.empty() && text.front() >= '0' && text.front() <= '9';
    const auto result = std::from_chars(text.data(), end, value);
    return startsWithDigit && result.ec == std::errc() && result.ptr == end ? value : -1;
}

} // namespace

namespace Preconditions {

bool noneMatchNames(const std::string& header, const std::string& tag)
{
    if (trimmed(header) == "*")
        return true;
    // Our tags contain no commas and no quotes, so a simple search is enough.
    for (std::size_t at = header.find(tag); at != std::string::npos; at = header.find(tag, at + 1)) {
        std::string before = trimmed(header.substr(0, at));
        if (before.size() >= 2 && before.compare(before.size() - 2, 2, "W/") == 0)
            before = trimmed(before.substr(0, before.size() - 2));
        const std::string after = trimmed(header.substr(at + tag.size()));
        if ((before.empty() || before.back() == ',') && (after.empty() || after.front() == ','))
            return true;
    }
    return false;
}

ByteRange range(const std::string& rangeHeader, const std::string& ifRangeHeader, const std::string& tag,
                std::int64_t size)
{
    const std::string unit = "bytes=";
    if (rangeHeader.compare(0, unit.size(), unit) != 0)
        return {};
    if (!trimmed(ifRangeHeader).empty() && trimmed(ifRangeHeader) != tag)
        return {};
    const std::string text = trimmed(rangeHeader.substr(unit.size()));
    const std::size_t dash = text.find('-');
    if (dash == std::string::npos || text.find(',') != std::string::npos)
        return {};
    const std::string from = trimmed(text.substr(0, dash));
    const std::string to = trimmed(text.substr(dash + 1));
    const std::int64_t first = number(from);
    const std::int64_t last = number(to);
    if ((from.empty() && last < 0) || (!from.empty() && first < 0) || (!to.empty() && last < 0) ||
        (first >= 0 && last >= 0 && last < first))
        return {};
    if (from.empty())
        return last == 0 || size == 0
                   ? ByteRange{RangeKind::Unsatisfiable}
                   : ByteRange{RangeKind::Part, std::max<std::int64_t>(size - last, 0), size - 1};
    if (first >= size)
        return {RangeKind::Unsatisfiable};
    return {RangeKind::Part, first, to.empty() ? size - 1 : std::min(last, size - 1)};
}

} // namespace Preconditions
