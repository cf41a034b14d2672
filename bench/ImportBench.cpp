// The import operations as a program, for comparison with other programs (see compare-import).
#include <cstdio>
#include <cstring>
#include <exception>
#include <memory>
#include <string>

#include "OrvLibrary/IO/LibraryImport.h"
#include "OrvLibrary/host/FileReaper.h"
#include "OrvLibrary/host/ZipUtils.h"

namespace {

class NoProgress : public ProgressSubject
{
public:
    bool checkCancel(bool) override { return false; }
    void createSubProgress(std::uint64_t) override {}
    void increment(const marl::unicode::String&, const marl::unicode::String&) override {}
    void updateLabels(const marl::unicode::String&, const marl::unicode::String&) override {}
};

/// Merges an extracted texture archive, which is consumed, into another one.
bool merge(const fileString& extracted, const fileString& destination)
{
    return LibraryImport::moveArchivedTextures(extracted, destination, std::make_shared<NoProgress>());
}

/// Unpacks a library to temporary files and removes them.
bool unpack(const fileString& source, const std::shared_ptr<ProgressSubject>& progress)
{
    const LibraryImport::UnpackResult result = LibraryImport::unpack(source, true, progress);
    const FileReaper library(result.first.second);
    const FileReaper textures(result.second.second);
    return result.first.first && result.second.first;
}

/// Copies every member into another archive.
bool copy(const fileString& source, const fileString& target)
{
    bool good = true;
    ZipUtils::getFilesDataInArchive(source, [&](const fileString& name, auto& handle, const auto& raw) {
        good = ZipUtils::writeFileToArchiveRaw(target, name, handle, true, raw);
        return good;
    });
    return good;
}

} // namespace

int main(int argc, char** argv)
{
    if (argc != 4) {
        std::fprintf(stderr, "usage: bench_import merge EXTRACTED DESTINATION | copy SOURCE TARGET |"
                             " unpack SOURCE asked | unpack SOURCE unasked\n");
        return 2;
    }
    try {
        const std::string mode = argv[1];
        const fileString first(argv[2]);
        if (mode == "merge")
            return merge(first, fileString(argv[3])) ? 0 : 1;
        if (mode == "copy")
            return copy(first, fileString(argv[3])) ? 0 : 1;
        const bool isAsked = std::strcmp(argv[3], "asked") == 0;
        return unpack(first, isAsked ? std::make_shared<NoProgress>() : nullptr) ? 0 : 1;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "%s\n", error.what());
        return 1;
    }
}
