#include "OrvLibrary/Utility/StringConversion.h"

#include "OrvLibrary/host/SQL.h"

namespace {

bool isAscii(unsigned char byte)
{
    return byte < 0x80;
}

bool isLeadOfTwo(unsigned char byte)
{
    return (byte & 0xE0) == 0xC0;
}

bool isContinuation(unsigned char byte)
{
    return (byte & 0xC0) == 0x80;
}

} // namespace

std::string Library::toWindows1252(const std::string& utf8)
{
    std::string bytes;
    bytes.reserve(utf8.size());
    for (std::size_t i = 0; i < utf8.size(); ++i) {
        const auto byte = static_cast<unsigned char>(utf8[i]);
        if (isAscii(byte)) {
            bytes += utf8[i];
        } else if (isLeadOfTwo(byte) && i + 1 < utf8.size() &&
                   isContinuation(static_cast<unsigned char>(utf8[i + 1]))) {
            // Deliberate: this is not a complete mapping to the code page. Existing files have names made in
            // this way.
            // Kept by: StringConversionToWindows1252.convertsByItsFixedRule
            ++i;
            bytes += static_cast<char>(byte << 6 | (static_cast<unsigned char>(utf8[i]) & 0x3F));
        }
    }
    return bytes;
}

std::string Library::toUTF8(const std::string& text)
{
    return SQL::to_utf8(text);
}
