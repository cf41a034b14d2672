#include "fuzz/ArchiveScript.h"

#include <cstdlib>
#include <utility>

#include "tests/support/ArchiveBuilder.h"

namespace fuzz {

namespace {

using test::ArchiveMember;

void makeOdd(ArchiveMember& member, char oddity)
{
    switch (oddity) {
    case 's':
        member.method = ArchiveMember::kStored;
        break;
    case 'd':
        member.flags |= 0x0008;
        break;
    case '6':
        member.zip64 = true;
        break;
    case 'u':
        member.flags |= 0x0800;
        break;
    case 'e':
        member.flags |= 0x0001;
        break;
    case 'x':
        member.extra = member.localExtra = std::string("\x99\x99\x03\x00xyz", 7);
        break;
    case 'm':
        member.comment = "a comment";
        break;
    case 'k':
        member.method = 12;
        break;
    case 'c':
        member.checksum = 1;
        break;
    case 'z':
        member.size = member.content.size() + 1;
        break;
    case 'n':
        member.localName = member.name + "2";
        break;
    case 'r':
        member.rawData = member.content;
        break;
    default:
        break;
    }
}

void addMember(test::ArchiveBuilder& archive, const std::string& line)
{
    const std::size_t equals = line.find('=');
    const std::string description = line.substr(0, equals);
    const std::string content = equals == std::string::npos ? "" : line.substr(equals + 1);
    const std::size_t blank = description.find(' ');
    const std::string name = blank == std::string::npos ? description : description.substr(blank + 1);
    ArchiveMember& member = archive.add(name, content);
    for (std::size_t i = 0; blank != std::string::npos && i < blank; ++i)
        makeOdd(member, description[i]);
}

} // namespace

std::string archiveOf(const std::vector<std::string>& lines)
{
    test::ArchiveBuilder archive;
    std::vector<std::pair<unsigned long, char>> changes;
    for (const std::string& line : lines) {
        const char kind = line.empty() ? '\0' : line[0];
        const std::size_t equals = line.find('=');
        if (kind == '!')
            archive.comment = line.substr(1);
        else if (kind == '^')
            archive.prefix = line.substr(1);
        else if (kind == '@' && equals != std::string::npos && equals + 1 < line.size())
            changes.emplace_back(std::strtoul(line.c_str() + 1, nullptr, 10), line[equals + 1]);
        else if (!line.empty())
            addMember(archive, line);
    }
    std::string bytes = archive.bytes();
    for (const auto& [place, byte] : changes)
        bytes[place % bytes.size()] = byte;
    return bytes;
}

} // namespace fuzz
