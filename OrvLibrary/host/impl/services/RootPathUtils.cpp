#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <system_error>

#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

#include "OrvLibrary/host/FileUtils.h"
#include "OrvLibrary/host/PathUtils.h"
#include "OrvLibrary/host/impl/files/FileHandle_p.h"

namespace {

constexpr char kTempFolder[] = "temp/";
constexpr mode_t kPrivateMode = 0700;

std::string environmentText(const char* name)
{
    const char* text = std::getenv(name);
    return text ? text : "";
}

std::string homeFolder()
{
    const std::string home = environmentText("HOME");
    if (!home.empty())
        return home;
    struct passwd entry = {};
    struct passwd* found = nullptr;
    char buffer[4096];
    const bool isKnown = getpwuid_r(geteuid(), &entry, buffer, sizeof buffer, &found) == 0 && found;
    return isKnown ? entry.pw_dir : "/";
}

/// The absolute path, so that it stays the same if the current folder changes.
fileString absolutePath(const fileString& path)
{
    std::error_code failure;
    const std::filesystem::path current = std::filesystem::current_path(failure);
    if (failure || (!path.empty() && path.toNativeString().front() == '/'))
        return path;
    return fileString(current.native()) / path;
}

/// Makes the folder unreadable for other users, even if another program made it.
void makePrivate(const fileString& folder)
{
    FileUtils::createDirectoriesWithPerm(folder.parentPath().parentPath(), false);
    FileUtils::createDirectoriesWithPerm(folder, true);
    const auto status = host::fileStatus(folder.toNativeString());
    if (status && status->st_uid == geteuid() && (status->st_mode & 077) != 0)
        chmod(folder.toNativeString().c_str(), kPrivateMode);
}

} // namespace

RootPathUtils::RootPathUtils(const fileString& root) : mRoot(absolutePath(root) / fileString()) {}

fileString RootPathUtils::getUserLibraryDatabasePath() const
{
    return mRoot + fileString("user/");
}

fileString RootPathUtils::getCoreLibraryDatabasePath() const
{
    return mRoot + fileString("core/");
}

fileString RootPathUtils::getBonusLibraryDatabasePath() const
{
    return mRoot + fileString("bonus/");
}

fileString RootPathUtils::getManufacturerLibraryPath() const
{
    return mRoot + fileString("manufacturer/");
}

fileString RootPathUtils::getManufacturerDataPath() const
{
    return mRoot + fileString("manufacturer-data/");
}

fileString RootPathUtils::getProprietaryLibraryReferencedFilesPath() const
{
    return mRoot + fileString("referenced/");
}

fileString RootPathUtils::getUserTexturePath() const
{
    return mRoot + fileString("textures/");
}

fileString RootPathUtils::getTempPath() const
{
    const fileString folder = mRoot + fileString(kTempFolder);
    makePrivate(folder);
    return folder;
}

bool RootPathUtils::createFolders(std::string& reason) const
{
    const fileString folders[] = {mRoot,
                                  getUserLibraryDatabasePath(),
                                  getCoreLibraryDatabasePath(),
                                  getBonusLibraryDatabasePath(),
                                  getManufacturerLibraryPath(),
                                  getManufacturerDataPath(),
                                  getProprietaryLibraryReferencedFilesPath(),
                                  getUserTexturePath(),
                                  getTempPath()};
    for (const fileString& folder : folders) {
        if (FileUtils::createDirectoriesWithPerm(folder, false))
            continue;
        reason = folder.toNativeString() + ": " + std::generic_category().message(errno);
        return false;
    }
    return true;
}

fileString RootPathUtils::defaultRoot()
{
    const std::string given = environmentText("ORV_LIBRARY_ROOT");
    if (!given.empty())
        return absolutePath(fileString(given));
    const std::string data = environmentText("XDG_DATA_HOME");
    if (!data.empty() && data.front() == '/') // the environment's rules say to ignore a relative path
        return fileString(data) / fileString("orv-library");
    return fileString(homeFolder()) / fileString(".local/share/orv-library");
}
