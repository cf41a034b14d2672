#pragma once

#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "OrvLibrary/host/ZipUtils.h"
#include "tests/support/ArchiveBuilder.h"
#include "tests/support/ArchiveReader.h"

namespace test {

/// Copies every member as unpacking does. The target archive may be missing.
/// @return whether each member was copied
inline std::vector<bool> copyAll(const fileString& source, const fileString& target, bool create = true)
{
    std::vector<bool> results;
    ZipUtils::getFilesDataInArchive(source, [&](const fileString& member, auto& handle, const auto& raw) {
        results.push_back(ZipUtils::writeFileToArchiveRaw(target, member, handle, create, raw));
        return true;
    });
    return results;
}

/// Copies only the first member, under another name.
inline bool copyFirstAs(const fileString& source, const fileString& target, const std::string& name,
                        bool create = true)
{
    bool result = false;
    ZipUtils::getFilesDataInArchive(source, [&](const fileString&, auto& handle, const auto& raw) {
        result = ZipUtils::writeFileToArchiveRaw(target, fileString(name), handle, create, raw);
        return false;
    });
    return result;
}

/// The source archive and the target name that all tests of the raw copy use.
class RawCopyTest : public testing::Test
{
protected:
    using Contents = std::vector<std::pair<std::string, std::string>>;

    fileString writeSource(const std::string& name = "source.zip") { return mSource.write(mFolder, name); }
    fileString target() const { return mFolder.file("target.zip"); }

    TempFolder mFolder;
    ArchiveBuilder mSource;
};

} // namespace test
