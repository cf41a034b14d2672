#pragma once

#include <cstdint>
#include <string>

/// Decides the answer to the conditional headers of a request.
namespace Preconditions {

/// Whether an `If-None-Match` names the tag: as one of a list, in the weak form too, or as "*".
/// @param tag with its quotes
bool noneMatchNames(const std::string& header, const std::string& tag);

enum class RangeKind
{
    Whole,        ///< none asked for, or one that is answered with everything
    Part,         ///< the bytes from `first` to `last`
    Unsatisfiable ///< outside of what there is
};

struct ByteRange
{
    RangeKind kind = RangeKind::Whole;
    std::int64_t first = 0;
    std::int64_t last = 0; ///< included
};

/// Reads a `Range` of one part. A text that is none, several parts, and a range whose `If-Range` is not the
/// strong tag, give everything.
ByteRange range(const std::string& rangeHeader, const std::string& ifRangeHeader, const std::string& tag,
                std::int64_t size);

} // namespace Preconditions
