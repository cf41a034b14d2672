// Merges two texture archives. The result has every new member and the old members with other names, each
// once; or the old archive stays unchanged. Input: lines of ArchiveScript.h; a ">" marks those of the new
// archive.
#include <algorithm>

#include "OrvLibrary/IO/LibraryImport.h"
#include "fuzz/ArchiveFacts.h"
#include "fuzz/ArchiveScript.h"
#include "fuzz/FuzzSandbox.h"

using fuzz::JudgedMember;
using fuzz::require;

namespace {

using Members = std::vector<JudgedMember>;

bool areSound(const Members& members)
{
    return std::none_of(members.begin(), members.end(), [](const auto& m) { return m.isUnsound; });
}

bool areCopied(const std::vector<const JudgedMember*>& members)
{
    return std::all_of(members.begin(), members.end(), [](const auto* m) { return m->isCopied; });
}

/// The old members whose names do not occur in the new archive.
Members remaining(const Members& old, const Members& added)
{
    Members left;
    std::copy_if(old.begin(), old.end(), std::back_inserter(left), [&](const JudgedMember& member) {
        return std::none_of(added.begin(), added.end(), [&](const auto& a) { return a.name == member.name; });
    });
    return left;
}

/// @return the content of the merged archive; none if the merge must fail
std::optional<std::vector<const JudgedMember*>> expectedMerge(const Members& left, const Members& added)
{
    const auto all = [](const Members& members) {
        std::vector<const JudgedMember*> pointers;
        for (const JudgedMember& member : members)
            pointers.push_back(&member);
        return pointers;
    };
    if (!areSound(left) || !areSound(added) || !areCopied(all(left)) || !areCopied(all(added)))
        return std::nullopt;
    std::vector<const JudgedMember*> merged = fuzz::lastOfEachName(left);
    const auto addedLast = fuzz::lastOfEachName(added);
    merged.insert(merged.end(), addedLast.begin(), addedLast.end());
    return merged;
}

void checkMerge(const fileString& destination, const std::string& oldBytes, bool isMoved,
                const std::optional<Members>& old, const std::optional<Members>& added)
{
    const Members left = old && added ? remaining(*old, *added) : Members();
    const auto merged = old && added ? expectedMerge(left, *added) : std::nullopt;
    require(isMoved == merged.has_value(), "archives whose kept members are sound are merged, and no others");
    if (merged)
        fuzz::requireMembers(destination, *merged);
    else
        require(test::readFile(destination) == oldBytes, "a failed merge leaves the old archive as it was");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    std::vector<std::string> oldLines;
    std::vector<std::string> newLines;
    for (const std::string& line : fuzz::linesOf(fuzz::textOf(data, size))) {
        if (!line.empty() && line[0] == '>')
            newLines.push_back(line.substr(1));
        else if (!line.empty())
            oldLines.push_back(line);
    }

    fuzz::Sandbox& sandbox = fuzz::Sandbox::get();
    sandbox.reset();
    const fileString destination = sandbox.file("textures/Kitchen.zip");
    const std::string oldBytes = fuzz::archiveOf(oldLines);
    if (!oldLines.empty())
        sandbox.write("textures/Kitchen.zip", oldBytes);
    const auto old = fuzz::judgeArchive(destination);
    const std::string newBytes = fuzz::archiveOf(newLines);
    const fileString extracted = sandbox.write("temp/new.zip", newBytes);
    const auto added = fuzz::judgeArchive(extracted);

    const bool isMoved =
        LibraryImport::moveArchivedTextures(extracted, destination, std::make_shared<fuzz::SilentProgress>());
    if (oldLines.empty())
        require(isMoved && test::readFile(destination) == newBytes, "the first archive is copied as it is");
    else
        checkMerge(destination, oldBytes, isMoved, old, added);
    fuzz::Tree after = sandbox.tree();
    after.erase("textures/Kitchen.zip");
    require(after == sandbox.freshTree(), "the new archive is consumed, and nothing is left");
    require(sandbox.host().resetFolders().size() == (isMoved ? 1U : 0U), "a move, and no other, is told");
    sandbox.requireOutsideUntouched();
    return 0;
}
