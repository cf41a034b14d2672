// Any bytes as a packed library. The unpacked files must be the members of the archive, in the right places,
// and no other file may change.
#include <algorithm>
#include <stdexcept>

#include "OrvLibrary/IO/LibraryImport.h"
#include "fuzz/ArchiveFacts.h"
#include "fuzz/FuzzSandbox.h"
#include "tests/support/ArchiveBuilder.h"

using fuzz::JudgedMember;
using fuzz::require;
using fuzz::Tree;

namespace {

enum class Place
{
    Temporary,
    Beside,
    BesideOldFiles
};

/// The expected result for an archive.
struct Outcome
{
    bool throws = false;
    std::optional<std::string> database;
    std::vector<JudgedMember> copied;            ///< in the order of the archive
    std::vector<const JudgedMember*> referenced; ///< those of `copied` that remain
};

bool isDatabase(const JudgedMember& member)
{
    const std::string name = member.name.substr(member.name.rfind('/') + 1);
    const std::size_t dot = name.rfind('.');
    return dot != std::string::npos && dot > 0 && name.substr(dot) == ".orvlib";
}

Outcome expectedOutcome(const std::optional<std::vector<JudgedMember>>& members)
{
    Outcome outcome;
    outcome.throws = !members;
    if (!members)
        return outcome;
    // Each database is unpacked, even if a later one of the same name replaces it.
    for (const JudgedMember& member : *members) {
        outcome.throws = outcome.throws || member.isUnsound || (isDatabase(member) && !member.content);
        if (isDatabase(member))
            outcome.database = member.content;
    }
    // If a copy is refused, the earlier member with the same name stays.
    for (const JudgedMember& member : *members) {
        if (!isDatabase(member) && member.isCopied)
            outcome.copied.push_back(member);
    }
    outcome.referenced = fuzz::lastOfEachName(outcome.copied);
    return outcome;
}

const std::vector<JudgedMember>& oldMembers()
{
    static const std::vector<JudgedMember> members = [] {
        test::ArchiveBuilder old;
        old.add("kept.png", "an old member");
        old.add("a", "an old member that many inputs replace");
        return *fuzz::judgeArchive(fuzz::Sandbox::get().write("old.zip", old.bytes()));
    }();
    return members;
}

const std::string& oldArchive()
{
    static const std::string bytes = [] {
        oldMembers();
        return test::readFile(fuzz::Sandbox::get().file("old.zip"));
    }();
    return bytes;
}

/// The members of the old archive that are not replaced, then the new ones.
std::vector<const JudgedMember*> addedTo(const std::vector<JudgedMember>& old,
                                         const std::vector<const JudgedMember*>& added)
{
    std::vector<const JudgedMember*> all;
    for (const JudgedMember& member : old) {
        const auto sameName = [&](const auto* other) { return other->name == member.name; };
        if (std::none_of(added.begin(), added.end(), sameName))
            all.push_back(&member);
    }
    all.insert(all.end(), added.begin(), added.end());
    return all;
}

std::optional<LibraryImport::UnpackResult> unpack(const fileString& archive, Place place, bool withProgress)
try {
    return LibraryImport::unpack(archive, place == Place::Temporary,
                                 withProgress ? std::make_shared<fuzz::SilentProgress>() : nullptr);
} catch (const std::runtime_error&) {
    return std::nullopt;
}

/// Checks that a new file is in its place, and removes it from `left`, the files still to be explained.
fileString takeMade(Tree& left, const LibraryImport::FoundFile& found, Place place,
                    const std::string& extension)
{
    fuzz::Sandbox& sandbox = fuzz::Sandbox::get();
    if (place == Place::Temporary)
        require(found.second.parentPath() == sandbox.file("temp"),
                "temporary names lie in the temporary folder");
    else
        require(found.second == sandbox.file("user/Kitchen" + extension),
                "names beside are the archive's own");
    const std::string root = sandbox.host().folder().path() + "/";
    require(left.erase(found.second.toNativeString().substr(root.size())) == 1, "what was found exists");
    return found.second;
}

void checkResult(const LibraryImport::UnpackResult& result, const Outcome& outcome, Place place, Tree& left)
{
    require(result.first.first == outcome.database.has_value(), "a database is found where there is one");
    require(result.second.first == !outcome.referenced.empty(),
            "referenced files are found where there are any");
    if (result.first.first) {
        const fileString file = takeMade(left, result.first, place, ".orvlib");
        require(test::readFile(file) == *outcome.database, "the database is the last one in the archive");
    }
    if (result.second.first) {
        const fileString file = takeMade(left, result.second, place, ".zip");
        const bool isAdded = place == Place::BesideOldFiles;
        fuzz::requireMembers(file, isAdded ? addedTo(oldMembers(), outcome.referenced) : outcome.referenced);
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    fuzz::Sandbox& sandbox = fuzz::Sandbox::get();
    oldArchive();
    sandbox.reset();
    const std::string bytes = fuzz::textOf(data, size);
    const fileString archive = sandbox.write("user/Kitchen.orvlibz", bytes);
    const auto place = static_cast<Place>(size % 3);
    if (place == Place::BesideOldFiles) {
        sandbox.write("user/Kitchen.zip", oldArchive());
        sandbox.write("user/Kitchen.orvlib", "an old database");
    }
    const auto members = fuzz::judgeArchive(archive);
    const Outcome outcome = expectedOutcome(members);
    const auto result = unpack(archive, place, size % 2 == 0);
    require(result.has_value() == !outcome.throws, "a sound archive is unpacked, and no other");

    Tree left = sandbox.tree();
    if (result)
        checkResult(*result, outcome, place, left);
    require(left["user/Kitchen.orvlibz"] == bytes, "the archive is not changed");
    left.erase("user/Kitchen.orvlibz");
    require(left == sandbox.freshTree(), "nothing else is left or changed");
    sandbox.requireOutsideUntouched();
    return 0;
}
