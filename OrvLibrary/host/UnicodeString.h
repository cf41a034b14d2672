#pragma once

#include <iosfwd>
#include <string>

#include "OrvLibrary/OrvLibraryExport.h"

namespace marl {
namespace unicode {

/// The host's text type for what people read. It holds UTF-8; bytes that are not UTF-8 pass through unharmed,
/// so that a path made from the text is the path that was meant. A plain value: one object belongs to one
/// thread.
class ORVLIBRARY_EXPORT String
{
public:
    String() = default;
    /// Takes UTF-8. Deliberately implicit: literals and standard strings stand for user texts everywhere.
    String(std::string utf8);
    String(const char* utf8);

    /// The text as UTF-8, byte for byte what it was built from.
    const std::string& toUTF8String() const { return mUtf8; }
    bool empty() const { return mUtf8.empty(); }

    String& operator+=(const String& right);

private:
    std::string mUtf8;
};

ORVLIBRARY_EXPORT String operator+(const String& left, const String& right);
ORVLIBRARY_EXPORT bool operator==(const String& left, const String& right);
ORVLIBRARY_EXPORT bool operator!=(const String& left, const String& right);
ORVLIBRARY_EXPORT bool operator<(const String& left, const String& right);
ORVLIBRARY_EXPORT std::ostream& operator<<(std::ostream& stream, const String& text);

} // namespace unicode
} // namespace marl
