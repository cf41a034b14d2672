#include "tests/support/ArchiveReader.h"

#include <memory>
#include <stdexcept>

#include <minizip/unzip.h>

namespace test {

namespace {

void check(int result, const char* what)
{
    if (result != UNZ_OK)
        throw std::runtime_error(std::string(what) + ": " + std::to_string(result));
}

std::string readCurrent(unzFile file, const unz_file_info64& info)
{
    const bool raw = (info.flag & 1U) != 0;
    int method = 0;
    int level = 0;
    check(unzOpenCurrentFile2(file, &method, &level, raw ? 1 : 0), "open member");
    std::string content(raw ? info.compressed_size : info.uncompressed_size, '\0');
    std::size_t done = 0;
    while (done < content.size()) {
        const int got =
            unzReadCurrentFile(file, &content[done], static_cast<unsigned>(content.size() - done));
        if (got <= 0)
            throw std::runtime_error("read member: " + std::to_string(got));
        done += static_cast<std::size_t>(got);
    }
    check(unzCloseCurrentFile(file), "close member");
    return content;
}

ReadMember readMember(unzFile file)
{
    unz_file_info64 info = {};
    check(unzGetCurrentFileInfo64(file, &info, nullptr, 0, nullptr, 0, nullptr, 0), "member");
    ReadMember member;
    member.name.resize(info.size_filename);
    member.extra.resize(info.size_file_extra);
    member.comment.resize(info.size_file_comment);
    check(unzGetCurrentFileInfo64(file, &info, member.name.data(), info.size_filename, member.extra.data(),
                                  info.size_file_extra, member.comment.data(), info.size_file_comment),
          "member");
    member.versionMadeBy = static_cast<std::uint16_t>(info.version);
    member.versionNeeded = static_cast<std::uint16_t>(info.version_needed);
    member.flags = static_cast<std::uint16_t>(info.flag);
    member.method = static_cast<std::uint16_t>(info.compression_method);
    member.dosDate = static_cast<std::uint32_t>(info.dosDate);
    member.checksum = static_cast<std::uint32_t>(info.crc);
    member.compressedSize = info.compressed_size;
    member.internalAttributes = static_cast<std::uint16_t>(info.internal_fa);
    member.externalAttributes = static_cast<std::uint32_t>(info.external_fa);
    member.content = readCurrent(file, info);
    return member;
}

} // namespace

std::vector<ReadMember> readArchive(const fileString& archive)
{
    const std::unique_ptr<void, int (*)(unzFile)> file(unzOpen64(archive.toNativeString().c_str()), unzClose);
    if (!file)
        throw std::runtime_error("not an archive: " + archive.toNativeString());
    std::vector<ReadMember> members;
    unz_global_info64 global = {};
    check(unzGetGlobalInfo64(file.get(), &global), "end record");
    for (std::uint64_t i = 0; i < global.number_entry; ++i) {
        check(i == 0 ? unzGoToFirstFile(file.get()) : unzGoToNextFile(file.get()), "next member");
        members.push_back(readMember(file.get()));
    }
    return members;
}

std::vector<std::pair<std::string, std::string>> contentsOf(const fileString& archive)
{
    std::vector<std::pair<std::string, std::string>> contents;
    for (ReadMember& member : readArchive(archive))
        contents.emplace_back(std::move(member.name), std::move(member.content));
    return contents;
}

} // namespace test
