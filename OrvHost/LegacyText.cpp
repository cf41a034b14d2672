#include "OrvHost/LegacyText.h"

#include "OrvLibrary/host/SQL.h"

namespace OrvHost {

namespace {

unsigned char byteAt(const std::string& text, std::size_t position)
{
    return position < text.size() ? static_cast<unsigned char>(text[position]) : 0;
}

bool continues(const std::string& text, std::size_t position)
{
    return (byteAt(text, position) & 0xC0) == 0x80;
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
    return length;
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
