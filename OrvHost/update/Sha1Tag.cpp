#include "OrvHost/update/Sha1Tag.h"

#include <algorithm>

namespace OrvHost {

namespace {

constexpr std::size_t kDigits = 40;

bool isHexadecimal(char character)
{
    return (character >= '0' && character <= '9') || (character >= 'a' && character <= 'f') ||
           (character >= 'A' && character <= 'F');
}

char lower(char character)
{
    return character >= 'A' && character <= 'F' ? static_cast<char>(character - 'A' + 'a') : character;
}

} // namespace

bool Sha1Tag::isSha1(const std::string& tag)
{
    return tag.size() == kDigits && std::all_of(tag.begin(), tag.end(), isHexadecimal);
}

bool Sha1Tag::equal(const std::string& left, const std::string& right)
{
    return std::equal(left.begin(), left.end(), right.begin(), right.end(),
                      [](char a, char b) { return lower(a) == lower(b); });
}

} // namespace OrvHost
