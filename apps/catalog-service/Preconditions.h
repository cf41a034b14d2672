#pragma once

#include <cstdint>
#include <string>

/// Evaluates the conditional headers of a request.
namespace Preconditions {

/// Whether an `If-None-Match` contains the tag, also in its weak form, or is "*".
/// @param tag with its quotes
bool noneMatchNames(const std::string& header, const std::string& tag);

enum class RangeKind
{
    Whole,        ///< no range, or one that is answered with the whole file
    Part,         ///< the bytes from `first` to `last`
    Unsatisfiable ///< outside of the file
};

struct ByteRange
{
    RangeKind kind = RangeKind::Whole;
    std::int64_t first = 0;
    std::int64_t last = 0; ///< included
};

/// Reads a `Range` with one part. If the text is not valid, has several parts, or comes with an `If-Range`
/// that is not the strong tag, the result is the whole file.
ByteRange range(const std::string& rangeHeader, const std::string& ifRangeHeader, const std::string& tag,
                std::int64_t size);

} // namespace Preconditions
