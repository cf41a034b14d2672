#include "OrvLibrary/host/fileString.h"

#include <ostream>
#include <utility>

#include "OrvLibrary/host/PathUtils.h"
#include "OrvLibrary/host/impl/files/FileHandle_p.h"
#include "OrvLibrary/host/impl/files/TempNames_p.h"

namespace {

constexpr char kSeparator = '/';

/// The index where the file name starts: after the last separator.
std::size_t nameStart(const std::string& path)
{
    const std::size_t separator = path.rfind(kSeparator);
    return separator == std::string::npos ? 0 : separator + 1;
}

/// The index of the extension's dot; the length of the path if there is no extension.
std::size_t extensionStart(const std::string& path)
{
    const std::size_t start = nameStart(path);
    const std::size_t dot = path.rfind('.');
    const bool none =
        dot == std::string::npos || dot <= start || path.compare(start, std::string::npos, "..") == 0;
    return none ? path.size() : dot;
}

} // namespace

fileString::fileString(const marl::unicode::String& text) : mNative(text.toUTF8String()) {}

fileString::fileString(std::string native) : mNative(std::move(native)) {}

fileString::fileString(const char* native) : mNative(native ? native : "") {}

bool fileString::pathExists() const
{
    return host::fileStatus(mNative).has_value();
}

fileString fileString::stem() const
{
    const std::size_t start = nameStart(mNative);
    return fileString(mNative.substr(start, extensionStart(mNative) - start));
}

fileString fileString::stemWithExtension() const
{
    return fileString(mNative.substr(nameStart(mNative)));
}

fileString fileString::extension() const
{
    return fileString(mNative.substr(extensionStart(mNative)));
}

fileString fileString::parentPath() const
{
    const std::string folder = mNative.substr(0, nameStart(mNative));
    const std::size_t last = folder.find_last_not_of(kSeparator);
    if (last == std::string::npos)
        return fileString(folder.substr(0, 1)); // the root, or no folder
    return fileString(folder.substr(0, last + 1));
}

fileString fileString::parentPathWithSeparator() const
{
    return fileString(mNative.substr(0, nameStart(mNative)));
}

fileString fileString::pathAndName() const
{
    return fileString(mNative.substr(0, extensionStart(mNative)));
}

marl::unicode::String fileString::unicodeString() const
{
    return marl::unicode::String(mNative);
}

std::time_t fileString::modificationTime() const
{
    const auto status = host::fileStatus(mNative);
    return status ? status->st_mtime : 0;
}

void fileString::generateAsTempName(const fileString& extension)
{
    const fileString folder = PathUtils::getObject().getTempPath();
    host::claimTempFolder(folder.toNativeString());
    do {
        *this = folder / fileString(host::makeTempName(extension.toNativeString()));
    } while (host::nameIsTaken(mNative));
}

void fileString::generateAsTempName(const char* extension)
{
    generateAsTempName(fileString(extension));
}

fileString operator/(const fileString& left, const fileString& right)
{
    if (left.empty())
        return right;
    const std::string& leftText = left.toNativeString();
    const std::string& rightText = right.toNativeString();
    const std::size_t leftEnd = leftText.find_last_not_of(kSeparator) + 1; // 0 for the root
    const std::size_t rightStart = rightText.find_first_not_of(kSeparator);
    std::string joined = leftText.substr(0, leftEnd) + kSeparator;
    if (rightStart != std::string::npos)
        joined.append(rightText, rightStart, std::string::npos);
    return fileString(std::move(joined));
}

fileString operator+(const fileString& left, const fileString& right)
{
    return fileString(left.toNativeString() + right.toNativeString());
}

bool operator<(const fileString& left, const fileString& right)
{
    return left.toNativeString() < right.toNativeString();
}

bool operator==(const fileString& left, const fileString& right)
{
    return left.toNativeString() == right.toNativeString();
}

bool operator!=(const fileString& left, const fileString& right)
{
    return !(left == right);
}

std::ostream& operator<<(std::ostream& stream, const fileString& path)
{
    return stream << path.toNativeString();
}
