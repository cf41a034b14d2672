// The import operations as a program, for comparison with whole programs of other makers (see
// compare-import).
#include <cstdio>
#include <cstring>
#include <exception>
#include <memory>

#include "OrvLibrary/IO/LibraryImport.h"
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
        std::fprintf(stderr, "usage: bench_import merge EXTRACTED DESTINATION | copy SOURCE TARGET\n");
        return 2;
    }
    try {
        const bool isMerge = std::strcmp(argv[1], "merge") == 0;
        return (isMerge ? merge : copy)(fileString(argv[2]), fileString(argv[3])) ? 0 : 1;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "%s\n", error.what());
        return 1;
    }
}
