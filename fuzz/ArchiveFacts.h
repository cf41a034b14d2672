#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "OrvLibrary/host/impl/zip/ZipArchive_p.h"

namespace fuzz {

/// The properties of a member that a raw copy preserves.
struct MemberFacts
{
    std::string compressed;
    std::uint16_t method = 0;
    std::uint16_t flags = 0; ///< without the descriptor flag
    std::uint16_t versionMadeBy = 0;
    std::uint32_t dosDate = 0;
    std::uint32_t checksum = 0;
    std::uint64_t size = 0;
    std::uint32_t externalAttributes = 0;
    std::string comment;

    bool operator==(const MemberFacts& other) const;
};

/// A member's name, whether it may be copied, and whether it is sound according to the oracle.
struct JudgedMember
{
    std::string name;
    MemberFacts facts;
    std::optional<std::string> content; ///< none if it cannot be read: encrypted, unknown method, damaged
    bool isUnsound = false;             ///< its method is known, but its data does not match the directory
    bool isCopied = false;              ///< its name and kind allow a raw copy
};

/// The members of an archive in its order; none if its structure is damaged. Only the compression library
/// checks the data.
std::optional<std::vector<JudgedMember>> judgeArchive(const fileString& path);

/// The last member of each name, in the order of these members.
std::vector<const JudgedMember*> lastOfEachName(const std::vector<JudgedMember>& members);

/// Fails unless the archive contains exactly these members, each once, and an independent reader agrees.
void requireMembers(const fileString& archive, const std::vector<const JudgedMember*>& expected);

} // namespace fuzz
