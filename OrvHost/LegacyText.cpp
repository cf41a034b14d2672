#include "OrvHost/LegacyText.h"

#include "OrvLibrary/host/SQL.h"

namespace OrvHost {

namespace {

/// The byte behind the text is zero, which continues no character.
unsigned char byteAt(const std::string& text, std::size_t position)
{
    return static_cast<unsigned char>(text[position]);
}

bool continues(const std::string& text, std::size_t position)
{
    return (byteAt(text, position) & 0xC0) == 0x80;
}

/// Whether no character begins with these two bytes, because it would be longer than it need be, a surrogate
/// or beyond the last one.
bool isExcluded(unsigned char first, unsigned char second)
{
    switch (first) {
    case 0xE0:
        return second < 0xA0;
    case 0xED:
        return second > 0x9F;
    case 0xF0:
        return second < 0x90;
    case 0xF4:
        return second > 0x8F;
    default:
        return false;
    }
}

/// The length of the UTF-8 character at `position`; 0 if there is none.
std::size_t characterLength(const std::string& text, std::size_t position)
{
    const unsigned char first = byteAt(text, position);
    const std::size_t length = first < 0x80   ? 1
                               : first < 0xC2 ? 0
                               : first < 0xE0 ? 2
                               : first < 0xF0 ? 3
                               : first < 0xF5 ? 4
                                              : 0;
    for (std::size_t index = 1; index < length; ++index) {
        if (!continues(text, position + index))
            return 0;
    }
    return isExcluded(first, byteAt(text, position + 1)) ? 0 : length;
}

} // namespace

std::string LegacyText::toUtf8(const std::string& text)
{
    std::string result;
    for (std::size_t position = 0; position < text.size();) {
        const std::size_t length = characterLength(text, position);
        result += length ? text.substr(position, length) : SQL::to_utf8(text.substr(position, 1));
        position += length ? length : 1;
    }
    return result;
}

} // namespace OrvHost
