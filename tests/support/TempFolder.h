#pragma once

#include <string>
#include <vector>

#include "OrvLibrary/host/fileString.h"

namespace test {

/// A fresh temporary folder. The destructor removes it with its contents.
class TempFolder
{
public:
    TempFolder();
    ~TempFolder();
    TempFolder(const TempFolder&) = delete;
    TempFolder& operator=(const TempFolder&) = delete;

    /// Without the final separator.
    const std::string& path() const { return mPath; }
    fileString file(const std::string& name) const;
    /// Writes a file below the folder and creates missing folders.
    fileString write(const std::string& name, const std::string& content) const;

private:
    std::string mPath;
};

/// The content of a file. Fails the test if it cannot be read.
std::string readFile(const std::string& path);
std::string readFile(const fileString& path);
void writeFile(const std::string& path, const std::string& content);
/// The permission bits of a file or folder. Fails the test if it does not exist.
unsigned modeOf(const fileString& path);
/// The relative names of all files and folders below `folder`, sorted; names of folders end with "/". Links
/// are listed but not followed.
std::vector<std::string> listTree(const std::string& folder);

} // namespace test
