#pragma once

#include <ctime>
#include <iosfwd>
#include <string>

#include "OrvLibrary/OrvLibraryExport.h"
#include "OrvLibrary/host/UnicodeString.h"

/// A path: the bytes that the file system uses, unchanged. A plain value that can be a key of an ordered
/// container. One object belongs to one thread. A path with a NUL byte cannot exist; all functions treat it
/// as a missing file.
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

    /// The file name without folder and extension: "Doors" for "/a/Doors.orvlib". A dot at the start of the
    /// name does not begin an extension.
    fileString stem() const;
    /// The file name without folder. Empty if the path ends with a separator.
    fileString stemWithExtension() const;
    /// The extension with its dot, in its letter case; empty if there is none.
    fileString extension() const;
    /// The folder without the separator at its end. For a path that ends with a separator, this is the path
    /// without it.
    fileString parentPath() const;
    /// The folder with the separator at its end; empty if the path has no folder.
    fileString parentPathWithSeparator() const;
    /// The whole path without its extension.
    fileString pathAndName() const;

    marl::unicode::String unicodeString() const;
    const std::string& toNativeString() const { return mNative; }

    /// When the file was last changed, in seconds since 1970; 0 if it does not exist.
    std::time_t modificationTime() const;

    /// Sets the path to a new name in the host's temporary folder. Before the process uses this folder for
    /// the first time, removes the temporary files of killed processes, unless another process is using the
    /// folder.
    /// @param extension with its dot, such as ".zip"
    void generateAsTempName(const fileString& extension);
    void generateAsTempName(const char* extension);

private:
    std::string mNative;
};

/// Joins two paths with exactly one separator, even if either side already has one. If the left side is
/// empty, returns the right side.
ORVLIBRARY_EXPORT fileString operator/(const fileString& left, const fileString& right);
/// Joins the texts without adding a separator.
ORVLIBRARY_EXPORT fileString operator+(const fileString& left, const fileString& right);
/// Byte-wise order.
ORVLIBRARY_EXPORT bool operator<(const fileString& left, const fileString& right);
ORVLIBRARY_EXPORT bool operator==(const fileString& left, const fileString& right);
ORVLIBRARY_EXPORT bool operator!=(const fileString& left, const fileString& right);
/// Writes the path text, byte for byte.
ORVLIBRARY_EXPORT std::ostream& operator<<(std::ostream& stream, const fileString& path);
