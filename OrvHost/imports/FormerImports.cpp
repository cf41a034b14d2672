// How it works: former files are kept as hard links if possible. A link needs no extra space, and nobody
// changes a file that was replaced. Otherwise they are copied with their times, because size and time tell
// whether a file is still the one that an import made. One rename restores a kept file; if it is missing, it
// has already been restored.
#include "OrvHost/imports/FormerImports_p.h"

#include <algorithm>
#include <filesystem>
#include <memory>
#include <set>
#include <stdexcept>

#include <fcntl.h>
#include <sys/stat.h>

#include "OrvLibrary/host/FileSearch.h"
#include "OrvLibrary/host/FileUtils.h"
#include "OrvLibrary/host/LockingFStream.h"
#include "OrvLibrary/host/ZipUtils.h"

namespace OrvHost {

namespace fs = std::filesystem;

namespace {

constexpr std::int64_t kNanoseconds = 1000000000;

fileString madeFolder(const fileString& root)
{
    const fileString folder = FormerImports::folderOf(root);
    if (!FileUtils::createDirectoriesWithPerm(folder, true))
        throw std::runtime_error("cannot create " + folder.toNativeString());
    return folder;
}

void setModified(const fileString& path, std::int64_t modified)
{
    const timespec times[] = {{0, UTIME_OMIT}, {modified / kNanoseconds, modified % kNanoseconds}};
    utimensat(AT_FDCWD, path.toNativeString().c_str(), times, AT_SYMLINK_NOFOLLOW);
}

/// Prevents other programs from merging into a texture archive while a former one is restored.
std::unique_ptr<LockingFStream> lockArchive(const fileString& path)
{
    if (path.extension() != ZipUtils::getExtension() || !path.pathExists())
        return nullptr;
    auto lock = std::make_unique<LockingFStream>(path, std::ios_base::app);
    if (!lock->is_open())
        throw std::runtime_error(path.toNativeString() + ": another program is changing it");
    return lock;
}

/// A damaged record does not stop an import: it is set aside, and a new one begins.
std::vector<ImportEntry> readOrSetAside(const fileString& folder)
{
    try {
        return ImportRecord::read(folder);
    } catch (const ImportRecord::Unreadable&) {
        ImportRecord::setAside(folder);
        return {};
    }
}

/// Gives a file a second name or, if that is not possible, copies it with its times.
void linkOrCopy(const fileString& from, const fileString& to, const FileStamp& stamp)
{
    std::error_code error;
    fs::remove(to.toNativeString(), error);
    fs::create_hard_link(from.toNativeString(), to.toNativeString(), error);
    if (!error)
        return;
    if (!FileUtils::copyFile(from, to, true))
        throw std::runtime_error(from.toNativeString() + ": cannot be kept for a later undo");
    setModified(to, stamp.modified);
}

} // namespace

fileString FormerImports::folderOf(const fileString& root)
{
    return root / fileString("former-imports");
}

FormerImports::FormerImports(const fileString& root, const std::shared_ptr<ProgressSubject>& progress)
    : mFolder(madeFolder(root)),
      mLock(HostLock::ofImport(mFolder, [&] { return progress && progress->checkCancel(false); })),
      mEntries(readOrSetAside(mFolder))
{
    recover();
}

void FormerImports::recover()
{
    if (!mEntries.empty()) {
        const ImportEntry last = mEntries.back();
        if (last.state == ImportEntry::State::Begun)
            last.hasTakenPlace() ? commit() : rollBack();
        if (last.state == ImportEntry::State::Undoing) {
            rollBack();
            mCompletedUndo = last;
        }
    }
    removeUnlisted();
}

void FormerImports::begin(const std::string& name, bool isProprietary, const std::vector<std::string>& roles)
{
    ImportEntry entry;
    entry.number = mEntries.empty() ? 1 : mEntries.back().number + 1;
    entry.name = name;
    entry.isProprietary = isProprietary;
    for (const std::string& role : roles) {
        entry.parts.push_back({role, {}, {}});
        keep(entry, entry.parts.back());
    }
    mEntries.push_back(entry);
    save();
}

void FormerImports::keep(const ImportEntry& entry, ImportPart& part) const
{
    const fileString path = entry.changedFile(part);
    const fileString kept = mFolder / entry.keptName(part);
    part.before = FileStamp::of(path);
    if (!part.before.exists)
        return;
    std::error_code error;
    if (fs::is_directory(path.toNativeString(), error))
        throw std::runtime_error(path.toNativeString() + ": is a folder");
    linkOrCopy(path, kept, part.before);
}

fileString FormerImports::copyKept(const std::string& role) const
{
    const ImportEntry& entry = mEntries.back();
    const ImportPart& part = *entry.part(role);
    const fileString kept = mFolder / entry.keptName(part);
    const fileString copy = kept + fileString(".copy");
    linkOrCopy(kept, copy, part.before);
    return copy;
}

void FormerImports::addNewFile(const std::string& role)
{
    mEntries.back().parts.push_back({role, {}, {}});
    save();
}

void FormerImports::commit()
{
    ImportEntry& entry = mEntries.back();
    entry.state = ImportEntry::State::Done;
    for (ImportPart& part : entry.parts)
        part.after = FileStamp::of(entry.changedFile(part));
    if (mEntries.size() > kMost)
        mEntries.erase(mEntries.begin(), mEntries.end() - kMost);
    save();
    removeUnlisted();
}

void FormerImports::rollBack()
{
    const ImportEntry entry = mEntries.back();
    for (const ImportPart& part : entry.parts)
        putBack(entry, part);
    dropLast();
}

std::string FormerImports::refusalOf(const ImportEntry& entry)
{
    for (const ImportPart& part : entry.parts) {
        const FileStamp now = FileStamp::of(entry.changedFile(part));
        if (now.exists && now != part.after)
            return entry.path(part).toNativeString() +
                   ": was changed after the import, and the change would be lost; to undo all the same, "
                   "move the file away first";
    }
    return {};
}

void FormerImports::undoLast()
{
    ImportEntry& entry = mEntries.back();
    const std::string refusal = refusalOf(entry);
    if (!refusal.empty())
        throw std::runtime_error(refusal);
    entry.state = ImportEntry::State::Undoing;
    save();
    rollBack();
}

void FormerImports::putBack(const ImportEntry& entry, const ImportPart& part) const
{
    const fileString path = entry.changedFile(part);
    const fileString kept = mFolder / entry.keptName(part);
    if (FileStamp::of(path) == part.before)
        return;
    const std::unique_ptr<LockingFStream> lock = lockArchive(path);
    if (!part.before.exists) {
        if (!FileUtils::removePath(path, 1))
            throw std::runtime_error(path.toNativeString() + ": cannot be removed");
    } else if (kept.pathExists()) {
        if (!FileUtils::moveFile(kept, path, false))
            throw std::runtime_error(path.toNativeString() + ": cannot be put back");
        setModified(path, part.before.modified);
    }
    FileSearch::get().resetFileSearch(entry.path(part).parentPathWithSeparator());
}

void FormerImports::dropLast()
{
    mEntries.pop_back();
    save();
    removeUnlisted();
}

void FormerImports::save()
{
    ImportRecord::write(mFolder, mEntries);
}

/// Removes kept files of dropped imports, and of imports that never began.
void FormerImports::removeUnlisted() const
{
    std::set<std::string> listed{"imports.json", "imports.json.unreadable", "imports.lock"};
    for (const ImportEntry& entry : mEntries)
        for (const ImportPart& part : entry.parts)
            listed.insert(entry.keptName(part).toNativeString());
    std::error_code error;
    std::vector<fs::path> unlisted;
    for (fs::directory_iterator file(mFolder.toNativeString(), error), end; !error && file != end;
         file.increment(error)) {
        if (listed.count(file->path().filename().native()) == 0)
            unlisted.push_back(file->path());
    }
    for (const fs::path& path : unlisted)
        FileUtils::removePath(fileString(path.native()), 1);
}

} // namespace OrvHost
