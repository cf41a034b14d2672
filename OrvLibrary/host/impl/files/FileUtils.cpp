#include "OrvLibrary/host/FileUtils.h"

#include <cerrno>
#include <filesystem>
#include <stdexcept>
#include <system_error>

#include <sys/file.h>
#include <unistd.h>

#include "OrvLibrary/host/impl/files/FileHandle_p.h"

namespace {

constexpr int kAlsoReadOnly = 1;
constexpr mode_t kStandardMode = 0644;
constexpr mode_t kFolderMode = 0755;
constexpr mode_t kPrivateFolderMode = 0700;

bool isFolder(const std::string& path)
{
    const auto status = host::fileStatus(path);
    if (status && !S_ISDIR(status->st_mode))
        errno = ENOTDIR;
    return status && S_ISDIR(status->st_mode);
}

bool isUsable(const fileString& path)
{
    return host::isUsable(path.toNativeString());
}

bool isMissing(const fileString& path)
{
    return isUsable(path) && !host::nameIsTaken(path.toNativeString()) &&
           (errno == ENOENT || errno == ENOTDIR);
}

bool isLocked(const std::string& path)
{
    const host::FileHandle file = host::openForLock(path);
    return file && host::tryLock(file.get(), LOCK_EX) == host::Lock::Busy;
}

/// The folder without separators at its end, because with them the system would follow a link. Empty if it
/// must not be removed.
std::string removableFolder(const fileString& path)
{
    const std::string& text = path.toNativeString();
    if (text.empty() || text.front() != '/' || !isUsable(path))
        return {};
    const std::size_t last = text.find_last_not_of('/');
    if (last == std::string::npos)
        return {};
    const fileString folder(text.substr(0, last + 1));
    const std::string name = folder.stemWithExtension().toNativeString();
    return name == "." || name == ".." ? std::string() : folder.toNativeString();
}

/// Makes folders writable for their owner, so that their content can be removed.
void makeFoldersWritable(const std::filesystem::path& folder)
{
    namespace fs = std::filesystem;
    std::error_code ignored;
    fs::permissions(folder, fs::perms::owner_all, fs::perm_options::add | fs::perm_options::nofollow,
                    ignored);
    for (fs::recursive_directory_iterator entry(folder, ignored), end; !ignored && entry != end;
         entry.increment(ignored)) {
        std::error_code alsoIgnored;
        if (entry->is_directory(alsoIgnored) && !entry->is_symlink(alsoIgnored))
            fs::permissions(entry->path(), fs::perms::owner_all, fs::perm_options::add, alsoIgnored);
    }
}

} // namespace

namespace FileUtils {

bool pathExists(const fileString& path)
{
    return path.pathExists();
}

std::int64_t fileSize(const fileString& path)
{
    const auto status = host::fileStatus(path.toNativeString());
    return status && S_ISREG(status->st_mode) ? static_cast<std::int64_t>(status->st_size) : -1;
}

bool canWriteFile(const fileString& path)
{
    const std::string& name = path.toNativeString();
    if (const auto status = host::fileStatus(name))
        return S_ISREG(status->st_mode) && host::mayWrite(name, *status);
    if (path.empty() || !isUsable(path) || errno != ENOENT)
        return false;
    const std::string folder = path.parentPathWithSeparator().toNativeString() + ".";
    return isFolder(folder) && faccessat(AT_FDCWD, folder.c_str(), W_OK | X_OK, AT_EACCESS) == 0;
}

bool isPathWriteLocked(const fileString& path)
{
    const auto status = host::fileStatus(path.toNativeString());
    if (!status)
        return false;
    return !host::mayWrite(path.toNativeString(), *status) ||
           (S_ISREG(status->st_mode) && isLocked(path.toNativeString()));
}

void makeFileWritable(const fileString& path)
{
    const auto status = host::fileStatus(path.toNativeString());
    if (status)
        chmod(path.toNativeString().c_str(), (status->st_mode & 07777) | S_IRUSR | S_IWUSR);
}

void setFilePermission(const fileString& path)
{
    if (!isUsable(path) || chmod(path.toNativeString().c_str(), kStandardMode) != 0)
        throw std::runtime_error(path.toNativeString() + ": " + std::generic_category().message(errno));
}

bool createDirectoriesWithPerm(const fileString& path, bool privateFolder)
{
    const std::string& name = path.toNativeString();
    if (isUsable(path) && isFolder(name))
        return true;
    const std::size_t last = name.find_last_not_of('/');
    if (!isUsable(path) || errno != ENOENT || last == std::string::npos)
        return false;
    const fileString folder(name.substr(0, last + 1));
    const fileString parent = folder.parentPath();
    if (!parent.empty() && !createDirectoriesWithPerm(parent, privateFolder))
        return false;
    const bool isMade =
        mkdir(folder.toNativeString().c_str(), privateFolder ? kPrivateFolderMode : kFolderMode) == 0;
    return isMade || (errno == EEXIST && isFolder(name)); // another process may have made it meanwhile
}

bool removePath(const fileString& path, int)
{
    // Read-only files need no flag here: only the folder must be writable.
    return isUsable(path) && (unlink(path.toNativeString().c_str()) == 0 || isMissing(path));
}

bool removeDirectoryAndFiles(const fileString& path, int flags)
{
    const std::string folder = removableFolder(path);
    if (folder.empty())
        return false;
    std::error_code failure;
    std::filesystem::remove_all(folder, failure);
    if (failure && flags == kAlsoReadOnly) {
        makeFoldersWritable(folder);
        std::filesystem::remove_all(folder, failure);
    }
    return !failure && isMissing(fileString(folder));
}

} // namespace FileUtils
