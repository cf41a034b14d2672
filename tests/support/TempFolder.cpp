#include "tests/support/TempFolder.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>

#include <gtest/gtest.h>

namespace fs = std::filesystem;

namespace test {

TempFolder::TempFolder()
{
    std::string pattern = (fs::temp_directory_path() / "orv-test-XXXXXX").string();
    if (!mkdtemp(pattern.data()))
        throw std::runtime_error("no temporary folder: " + pattern);
    mPath = pattern;
}

TempFolder::~TempFolder()
{
    std::error_code ignored;
    fs::remove_all(mPath, ignored);
}

fileString TempFolder::file(const std::string& name) const
{
    return fileString(mPath + "/" + name);
}

fileString TempFolder::write(const std::string& name, const std::string& content) const
{
    writeFile(mPath + "/" + name, content);
    return file(name);
}

std::string readFile(const std::string& path)
{
    std::ifstream stream(path, std::ios::binary);
    EXPECT_TRUE(stream.is_open()) << path;
    return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
}

std::string readFile(const fileString& path)
{
    return readFile(path.toNativeString());
}

void writeFile(const std::string& path, const std::string& content)
{
    fs::create_directories(fs::path(path).parent_path());
    std::ofstream stream(path, std::ios::binary | std::ios::trunc);
    stream << content;
    stream.close();
    if (!stream)
        throw std::runtime_error("cannot write " + path);
}

unsigned modeOf(const fileString& path)
{
    std::error_code failure;
    const fs::file_status status = fs::status(path.toNativeString(), failure);
    EXPECT_TRUE(fs::exists(status)) << path.toNativeString();
    return static_cast<unsigned>(status.permissions());
}

std::vector<std::string> listTree(const std::string& folder)
{
    std::vector<std::string> names;
    for (const auto& entry : fs::recursive_directory_iterator(folder)) {
        const bool isFolder = fs::is_directory(entry.symlink_status());
        names.push_back(entry.path().lexically_relative(folder).string() + (isFolder ? "/" : ""));
    }
    std::sort(names.begin(), names.end());
    return names;
}

} // namespace test
