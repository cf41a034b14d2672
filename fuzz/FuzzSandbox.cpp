#include "fuzz/FuzzSandbox.h"

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>

#include <unistd.h>

namespace fs = std::filesystem;

namespace fuzz {

namespace {

std::string& folderToRemove()
{
    static std::string folder;
    return folder;
}

std::string parentFolder()
{
    const char kMemory[] = "/dev/shm";
    const bool isInMemory = !std::getenv("TMPDIR") && access(kMemory, W_OK | X_OK) == 0;
    return isInMemory ? kMemory : fs::temp_directory_path().string();
}

std::string makeFolder()
{
    std::string pattern = parentFolder() + "/orv-fuzz-XXXXXX";
    if (!mkdtemp(pattern.data()))
        throw std::runtime_error("no temporary folder: " + pattern);
    return pattern;
}

std::string contentOf(const fs::path& file)
{
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
}

/// @param passedOver a folder whose content is ignored
Tree treeOf(const std::string& folder, const std::string& passedOver = {})
{
    Tree tree;
    for (auto entry = fs::recursive_directory_iterator(folder); entry != fs::end(entry); ++entry) {
        const std::string name = entry->path().string().substr(folder.size() + 1);
        if (entry->symlink_status().type() == fs::file_type::directory)
            tree[name + "/"];
        else
            tree[name] = contentOf(entry->path());
        if (entry->path() == passedOver)
            entry.disable_recursion_pending();
    }
    return tree;
}

} // namespace

void fail(const std::string& what)
{
    std::fprintf(stderr, "does not hold: %s\n", what.c_str());
    std::error_code ignored;
    if (!folderToRemove().empty())
        fs::remove_all(folderToRemove(), ignored);
    std::abort();
}

std::string textOf(const std::uint8_t* data, std::size_t size)
{
    return {reinterpret_cast<const char*>(data), size};
}

std::vector<std::string> linesOf(const std::string& text)
{
    std::vector<std::string> lines;
    std::size_t start = 0;
    for (std::size_t end; (end = text.find('\n', start)) != std::string::npos; start = end + 1)
        lines.push_back(text.substr(start, end - start));
    lines.push_back(text.substr(start));
    return lines;
}

Sandbox& Sandbox::get()
{
    static Sandbox sandbox;
    return sandbox;
}

Sandbox::Sandbox() : mFolder(makeFolder())
{
    folderToRemove() = mFolder;
    setenv("TMPDIR", mFolder.c_str(), 1);
    mHost = std::make_unique<test::ScopedHost>();
    mFreshTree = tree();
    test::writeFile(mFolder + "/sentinel", "outside");
    test::writeFile(mFolder + "/core/Doors.orvlib", "outside, under a tempting name");
    mOutside = treeOf(mFolder, mHost->folder().path());
}

Sandbox::~Sandbox()
{
    mHost.reset();
    std::error_code ignored;
    fs::remove_all(mFolder, ignored);
}

fileString Sandbox::write(const std::string& name, const std::string& content) const
{
    std::ofstream stream(file(name).toNativeString(), std::ios::binary | std::ios::trunc);
    stream << content;
    stream.close();
    if (!stream)
        throw std::runtime_error("cannot write " + name);
    return file(name);
}

Tree Sandbox::tree() const
{
    return treeOf(mHost->folder().path());
}

void Sandbox::requireOutsideUntouched() const
{
    require(treeOf(mFolder, mHost->folder().path()) == mOutside,
            "nothing outside the host's folders changes");
}

void Sandbox::reset()
{
    const Tree now = tree();
    for (auto entry = now.rbegin(); entry != now.rend(); ++entry) {
        if (mFreshTree.count(entry->first) == 0)
            fs::remove(file(entry->first).toNativeString());
    }
    for (const auto& [name, content] : mFreshTree) {
        const auto found = now.find(name);
        if (name.back() == '/')
            fs::create_directories(file(name).toNativeString());
        else if (found == now.end() || found->second != content)
            write(name, content);
    }
    mHost->messaging().clear();
    mHost->fileSearch().clear();
}

} // namespace fuzz
