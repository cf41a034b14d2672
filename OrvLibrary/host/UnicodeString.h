#pragma once

#include <iosfwd>
#include <string>

#include "OrvLibrary/OrvLibraryExport.h"

namespace marl {
namespace unicode {

/// The host's type for texts that people read, in UTF-8. Bytes that are not UTF-8 stay unchanged, so a path
/// made from the text is the right path. A plain value: one object belongs to one thread.
class ORVLIBRARY_EXPORT String
{
public:
    String() = default;
    /// Takes UTF-8. Not explicit, so that literals and standard strings can be used as texts everywhere.
    String(std::string utf8);
    String(const char* utf8);

    /// The text in UTF-8, with exactly the bytes it was made from.
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
