#pragma once

#include <ctime>
#include <iosfwd>
#include <string>

#include "OrvLibrary/OrvLibraryExport.h"
#include "OrvLibrary/host/UnicodeString.h"

/// A path: the bytes that the file system sees, kept exactly as given. A plain value, usable as the key of an
/// ordered container; one object belongs to one thread. A text with a NUL byte names nothing that can exist:
/// every question about it is answered as for a missing file.
class ORVLIBRARY_EXPORT fileString
{
public:
    fileString() = default;
    fileString(const marl::unicode::String& text);
    /// Takes the path in the platform's own 8-bit encoding (UTF-8 on Linux).
    explicit fileString(std::string native);
    explicit fileString(const char* native);

    bool pathExists() const;
    bool empty() const { return mNative.empty(); }

    /// File name without folder and extension: "Doors" for "/a/Doors.orvlib". A leading dot starts no
    /// extension.
    fileString stem() const;
    /// File name without folder. Empty when the path ends with a separator.
    fileString stemWithExtension() const;
    /// Extension with its dot, letter case as it stands; empty when there is none.
    fileString extension() const;
    /// Containing folder without the final separator; for a path that ends with a separator, that folder.
    fileString parentPath() const;
    /// Containing folder with the final separator; empty when the path names no folder.
    fileString parentPathWithSeparator() const;
    /// The whole path without its extension.
    fileString pathAndName() const;

    marl::unicode::String unicodeString() const;
    const std::string& toNativeString() const { return mNative; }

    /// Last modification, in whole seconds since the epoch; 0 when the file does not exist.
    std::time_t modificationTime() const;

    /// Replaces the value with the path of a file that does not exist yet, in the host's temporary folder.
    /// Before this process first uses the folder, files that killed processes left there under such names are
    /// removed, provided that no other process uses the folder.
    /// @param extension with its dot, such as ".zip"
    void generateAsTempName(const fileString& extension);
    void generateAsTempName(const char* extension);

private:
    std::string mNative;
};

/// Joins with exactly one separator, also when the right side starts with one or the left side ends with one.
/// An empty left side gives the right side as it is.
ORVLIBRARY_EXPORT fileString operator/(const fileString& left, const fileString& right);
/// Plain concatenation: no separator is added.
ORVLIBRARY_EXPORT fileString operator+(const fileString& left, const fileString& right);
/// Byte-wise order.
ORVLIBRARY_EXPORT bool operator<(const fileString& left, const fileString& right);
ORVLIBRARY_EXPORT bool operator==(const fileString& left, const fileString& right);
ORVLIBRARY_EXPORT bool operator!=(const fileString& left, const fileString& right);
/// Writes the path text, byte for byte.
ORVLIBRARY_EXPORT std::ostream& operator<<(std::ostream& stream, const fileString& path);
