#include "OrvLibrary/host/UnicodeString.h"

#include <ostream>
#include <utility>

namespace marl {
namespace unicode {

String::String(std::string utf8) : mUtf8(std::move(utf8)) {}

String::String(const char* utf8) : mUtf8(utf8 ? utf8 : "") {}

String& String::operator+=(const String& right)
{
    mUtf8 += right.mUtf8;
    return *this;
}

String operator+(const String& left, const String& right)
{
    return String(left) += right;
}

bool operator==(const String& left, const String& right)
{
    return left.toUTF8String() == right.toUTF8String();
}

bool operator!=(const String& left, const String& right)
{
    return !(left == right);
}

bool operator<(const String& left, const String& right)
{
    return left.toUTF8String() < right.toUTF8String();
}

std::ostream& operator<<(std::ostream& stream, const String& text)
{
    return stream << text.toUTF8String();
}

} // namespace unicode
} // namespace marl
