#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "OrvLibrary/host/impl/zip/ZipArchive_p.h"

namespace fuzz {

/// What a raw copy of a member keeps.
struct MemberFacts
{
    std::string compressed;
    std::uint16_t method = 0;
    std::uint16_t flags = 0; ///< without the one for a descriptor
    std::uint16_t versionMadeBy = 0;
    std::uint32_t dosDate = 0;
    std::uint32_t checksum = 0;
    std::uint64_t size = 0;
    std::uint32_t externalAttributes = 0;
    std::string comment;

    bool operator==(const MemberFacts& other) const;
};

/// A member by name, and whether it may be copied and is sound in the eyes of the oracle.
struct JudgedMember
{
    std::string name;
    MemberFacts facts;
    std::optional<std::string>
        content;            ///< none when it cannot be read: encrypted, of a foreign method, unsound
    bool isUnsound = false; ///< readable by its kind, but its data is not what the directory says
    bool isCopied = false;  ///< by name and kind; a raw copy of any other is refused
};

/// The members of an archive in its order; none when its structure is not sound. The data is judged by the
/// compression library alone.
std::optional<std::vector<JudgedMember>> judgeArchive(const fileString& path);

/// The last member of each name, in the order of those last ones.
std::vector<const JudgedMember*> lastOfEachName(const std::vector<JudgedMember>& members);

/// Fails unless the archive holds just these members, each once, and an independent reader agrees.
void requireMembers(const fileString& archive, const std::vector<const JudgedMember*>& expected);

} // namespace fuzz
