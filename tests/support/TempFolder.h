#pragma once

#include <string>
#include <vector>

#include "OrvLibrary/host/fileString.h"

namespace test {

/// A fresh folder of the test's own, removed with all it holds at the end of the block.
class TempFolder
{
public:
    TempFolder();
    ~TempFolder();
    TempFolder(const TempFolder&) = delete;
    TempFolder& operator=(const TempFolder&) = delete;

    /// Without the final separator.
    const std::string& path() const { return mPath; }
    /// The path of `name` below the folder.
    fileString file(const std::string& name) const;
    /// Writes a file below the folder, creating folders on the way.
    fileString write(const std::string& name, const std::string& content) const;

private:
    std::string mPath;
};

/// The whole content of a file; fails the test when it cannot be read.
std::string readFile(const std::string& path);
std::string readFile(const fileString& path);
void writeFile(const std::string& path, const std::string& content);
/// The permission bits of a file or folder; fails the test when there is none.
unsigned modeOf(const fileString& path);
/// Names of all files and folders below `folder`, relative, folders with a final "/", sorted.
/// Links are named, not followed.
std::vector<std::string> listTree(const std::string& folder);

} // namespace test
