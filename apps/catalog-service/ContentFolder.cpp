#include "apps/catalog-service/ContentFolder.h"

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstdlib>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "OrvLibrary/host/SHA1.h"

namespace {

/// The number of tags to remember. A folder has far fewer files; the limit removes those of replaced files.
constexpr std::size_t kRememberedTags = 10000;

std::string descriptorPath(int descriptor)
{
    return "/proc/self/fd/" + std::to_string(descriptor);
}

/// Whether the name can only lead below the folder: no NUL, not absolute, no "." and no "..".
bool isPlainName(const std::string& name)
{
    if (name.empty() || name.front() == '/' || name.find('\0') != std::string::npos)
        return false;
    const std::string framed = "/" + name + "/";
    return framed.find("/../") == std::string::npos && framed.find("/./") == std::string::npos;
}

std::string realPath(const std::string& path)
{
    char buffer[PATH_MAX];
    return realpath(path.c_str(), buffer) ? buffer : "";
}

/// The real path of an open file.
std::string openPath(int descriptor)
{
    char buffer[PATH_MAX];
    const ssize_t size = readlink(descriptorPath(descriptor).c_str(), buffer, sizeof buffer);
    return size > 0 ? std::string(buffer, static_cast<std::size_t>(size)) : std::string();
}

} // namespace

ContentFile::~ContentFile()
{
    close(mDescriptor);
}

std::size_t ContentFile::read(std::int64_t offset, char* buffer, std::size_t count) const
{
    ssize_t result = 0;
    do {
        result = pread(mDescriptor, buffer, count, offset);
    } while (result < 0 && errno == EINTR);
    return static_cast<std::size_t>(std::max<ssize_t>(result, 0));
}

ContentFolder::ContentFolder(const std::string& folder) : mRoot(realPath(folder))
{
    struct stat status;
    if (!mRoot.empty() && (stat(mRoot.c_str(), &status) != 0 || !S_ISDIR(status.st_mode)))
        mRoot.clear();
}

std::shared_ptr<const ContentFile> ContentFolder::find(const std::string& subfolder,
                                                       const std::vector<std::string>& names)
{
    for (const std::string& name : names) {
        const auto file = open(subfolder, name);
        if (!file)
            continue;
        file->tag = tagOf(*file);
        return file;
    }
    return nullptr;
}

std::shared_ptr<ContentFile> ContentFolder::open(const std::string& subfolder, const std::string& name) const
{
    if (!isPlainName(name))
        return nullptr;
    const std::string path = mRoot + "/" + subfolder + "/" + name;
    // Without waiting, because the name may be that of a pipe.
    const int descriptor = ::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (descriptor < 0)
        return nullptr;
    auto file = std::make_shared<ContentFile>(descriptor);
    struct stat status;
    const std::string inside = mRoot == "/" ? mRoot : mRoot + "/";
    if (fstat(descriptor, &status) != 0 || !S_ISREG(status.st_mode) ||
        openPath(descriptor).compare(0, inside.size(), inside) != 0)
        return nullptr;
    file->size = status.st_size;
    file->modified = status.st_mtime;
    return file;
}

std::string ContentFolder::tagOf(const ContentFile& file)
{
    struct stat status;
    if (fstat(file.descriptor(), &status) != 0)
        return {};
    const State state(status.st_dev, status.st_ino, status.st_size,
                      std::int64_t(status.st_mtim.tv_sec) * 1'000'000'000 + status.st_mtim.tv_nsec);
    {
        const std::lock_guard<std::mutex> lock(mMutex);
        const auto found = mTags.find(state);
        if (found != mTags.end())
            return found->second;
    }
    const std::string digest = SHA1::fileContentsToSHA1Hex(fileString(descriptorPath(file.descriptor())));
    const std::string tag = '"' + digest + '"';
    const std::lock_guard<std::mutex> lock(mMutex);
    if (mTags.size() >= kRememberedTags)
        mTags.clear();
    mTags[state] = tag;
    return tag;
}
