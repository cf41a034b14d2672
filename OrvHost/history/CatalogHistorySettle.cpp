#include <algorithm>
#include <filesystem>

#include "OrvHost/history/CatalogHistory.h"
#include "OrvHost/history/HistoryEntry.h"
#include "OrvHost/history/HistoryFolder.h"
#include "OrvLibrary/host/FileUtils.h"

namespace OrvHost {

namespace fs = std::filesystem;

using HistoryFolder::isRegularFile;
using HistoryFolder::isSameFile;
using HistoryFolder::namesIn;

namespace {

/// Removes the archive last, so that no version is ever without it.
void remove(const HistoryEntry& entry)
{
    FileUtils::removePath(entry.file);
    if (entry.companion() != entry.file)
        FileUtils::removePath(entry.companion());
}

std::int64_t sizeOf(const HistoryEntry& entry)
{
    std::int64_t size = std::max<std::int64_t>(FileUtils::fileSize(entry.file), 0);
    if (entry.companion() != entry.file)
        size += std::max<std::int64_t>(FileUtils::fileSize(entry.companion()), 0);
    return size;
}

/// Removes leftovers of killed processes: incomplete copies, and archives without their catalog.
void removeStrays(const CatalogPlace& place)
{
    const fileString extension = fileString(place.name).extension();
    for (const fileString& file : namesIn(CatalogHistory::folderOf(place))) {
        const bool isEntry = HistoryEntry::ofFile(file).has_value();
        const bool isVersion = isEntry && file.extension() == extension;
        const bool isCompanion = isEntry && isRegularFile(file.pathAndName() + extension) &&
                                 file.extension() == fileString(".zip");
        if (!isVersion && !isCompanion)
            FileUtils::removePath(file);
    }
}

/// Removes a folder and its subfolders as far as they are empty. Does not follow links.
void removeEmptyFolders(const fileString& folder)
{
    std::error_code hasFiles;
    if (!fs::is_directory(fs::symlink_status(folder.toNativeString(), hasFiles)))
        return;
    for (const fileString& name : namesIn(folder))
        removeEmptyFolders(name);
    fs::remove(folder.toNativeString(), hasFiles);
}

} // namespace

void CatalogHistory::settle() const
{
    for (const CatalogPlace& place : places())
        settle(place);
    removeOldest();
    removeEmptyFolders(folder());
}

void CatalogHistory::settle(const CatalogPlace& place) const
{
    const auto most = static_cast<std::size_t>(std::max(mBounds.versions, 1));
    std::vector<HistoryEntry> kept;
    for (const HistoryEntry& entry : HistoryEntry::of(place)) {
        // Restores that were killed one after the other may have kept a version twice.
        const bool isTwice = std::any_of(kept.begin(), kept.end(), [&](const HistoryEntry& newer) {
            return newer.tag == entry.tag && isSameFile(newer.file, entry.file);
        });
        if (kept.size() < most && !isTwice && !hasSameContents(entry.file, place.path()))
            kept.push_back(entry);
        else
            remove(entry);
    }
    removeStrays(place);
}

void CatalogHistory::removeOldest() const
{
    std::int64_t total = 0;
    std::vector<HistoryEntry> candidates;
    for (const CatalogPlace& place : places()) {
        const std::vector<HistoryEntry> entries = HistoryEntry::of(place);
        for (const HistoryEntry& entry : entries)
            total += sizeOf(entry);
        if (!entries.empty())
            candidates.insert(candidates.end(), entries.begin() + 1, entries.end());
    }
    std::sort(candidates.begin(), candidates.end(),
              [](const HistoryEntry& left, const HistoryEntry& right) { return left.time < right.time; });
    for (const HistoryEntry& entry : candidates) {
        if (total <= mBounds.bytes)
            return;
        total -= sizeOf(entry);
        remove(entry);
    }
}

} // namespace OrvHost
