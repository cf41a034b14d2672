#pragma once

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "OrvLibrary/host/fileString.h"

namespace test {

/// One member as an independent reader sees it.
struct ReadMember
{
    std::string name;
    std::string content; ///< the raw data when the member is encrypted
    std::uint16_t versionMadeBy = 0;
    std::uint16_t flags = 0;
    std::uint16_t method = 0;
    std::uint32_t dosDate = 0;
    std::uint32_t checksum = 0;
    std::uint64_t compressedSize = 0;
    std::uint16_t internalAttributes = 0;
    std::uint32_t externalAttributes = 0;
    std::string extra;
    std::string comment;
};

/// Reads an archive with the zip library's own reader, every member with all that the directory says, in the
/// order of the directory.
/// @throws std::runtime_error when it is not sound in that reader's eyes
std::vector<ReadMember> readArchive(const fileString& archive);
/// Name and content of every member, in the order of the directory.
std::vector<std::pair<std::string, std::string>> contentsOf(const fileString& archive);

} // namespace test
