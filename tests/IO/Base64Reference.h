#pragma once

#include <string>
#include <vector>

namespace test {

/// A simple implementation of Base64 for comparison. It processes one character at a time.
std::string referenceEncode(const std::vector<unsigned char>& bytes);

struct ReferenceDecoding
{
    std::vector<unsigned char> bytes;
    std::string failure; ///< the error in the text; empty if it is valid
};
ReferenceDecoding referenceDecode(const std::string& text);

} // namespace test
