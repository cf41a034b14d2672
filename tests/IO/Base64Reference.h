#pragma once

#include <string>
#include <vector>

namespace test {

/// The rules of Base64 one step at a time, for comparison.
std::string referenceEncode(const std::vector<unsigned char>& bytes);

struct ReferenceDecoding
{
    std::vector<unsigned char> bytes;
    std::string failure; ///< what is wrong with the text; empty when nothing is
};
ReferenceDecoding referenceDecode(const std::string& text);

} // namespace test
