#include "OrvHost/update/PartialFiles.h"

#include <algorithm>
#include <filesystem>
#include <vector>

#include <QCryptographicHash>

#include "OrvLibrary/host/PathUtils.h"

namespace OrvHost {

namespace fs = std::filesystem;

namespace {

/// Half of a checksum, which is enough to distinguish addresses and versions.
std::string shortHash(const std::string& text)
{
    const QByteArray hash =
        QCryptographicHash::hash(QByteArray::fromStdString(text), QCryptographicHash::Sha1);
    return hash.toHex().left(20).toStdString();
}

struct Part
{
    fs::path path;
    fs::file_time_type time;
    std::int64_t bytes = 0;
};

/// Oldest first.
std::vector<Part> partsIn(const std::string& folder)
{
    std::vector<Part> parts;
    std::error_code error;
    for (fs::directory_iterator entry(folder, error); !error && entry != fs::directory_iterator();
         entry.increment(error)) {
        std::error_code unreadable;
        if (!entry->is_regular_file(unreadable) || entry->path().extension() != PartialFiles::kExtension)
            continue;
        const auto time = entry->last_write_time(unreadable);
        const auto bytes = static_cast<std::int64_t>(entry->file_size(unreadable));
        if (!unreadable)
            parts.push_back({entry->path(), time, bytes});
    }
    std::sort(parts.begin(), parts.end(), [](const Part& a, const Part& b) { return a.time < b.time; });
    return parts;
}

void removePart(const fs::path& path)
{
    std::error_code error;
    fs::remove(path, error);
}

} // namespace

fileString PartialFiles::defaultFolder()
{
    return PathUtils::getObject().getTempPath() / fileString("partial");
}

fileString PartialFiles::fileFor(const std::string& url, const std::string& validator) const
{
    const std::string folder = mFolder.toNativeString();
    std::error_code error;
    fs::create_directories(folder, error);
    if (error)
        return {};
    const std::string prefix = shortHash(url) + "-";
    const std::string name = prefix + shortHash(validator) + kExtension;
    for (const Part& part : partsIn(folder)) {
        const std::string other = part.path.filename().string();
        if (other != name && other.compare(0, prefix.size(), prefix) == 0)
            removePart(part.path);
    }
    return mFolder / fileString(name);
}

void PartialFiles::prune(std::int64_t mostBytes) const
{
    const std::vector<Part> parts = partsIn(mFolder.toNativeString());
    std::int64_t total = 0;
    for (const Part& part : parts)
        total += part.bytes;
    const auto oldest = fs::file_time_type::clock::now() - kLongestAge;
    for (const Part& part : parts) {
        if (part.time >= oldest && total <= mostBytes)
            break;
        removePart(part.path);
        total -= part.bytes;
    }
    std::error_code error;
    fs::remove(mFolder.toNativeString(), error); // succeeds only if it is empty
}

} // namespace OrvHost
