#pragma once

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "OrvLibrary/host/fileString.h"

namespace test {

/// One member as minizip reads it, independently of the library.
struct ReadMember
{
    std::string name;
    std::string content; ///< the raw data when the member is encrypted
    std::uint16_t versionMadeBy = 0;
    std::uint16_t versionNeeded = 0;
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

/// Reads an archive with minizip, which the library does not use. Returns all members with everything that
/// the directory says, in the order of the directory.
/// @throws std::runtime_error if minizip refuses the archive
std::vector<ReadMember> readArchive(const fileString& archive);
/// Name and content of every member, in the order of the directory.
std::vector<std::pair<std::string, std::string>> contentsOf(const fileString& archive);

} // namespace test
