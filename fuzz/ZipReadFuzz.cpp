// Any bytes as an archive. A walk must give the members of the directory, both ways of reading a member must
// give the bytes that the compression library gives, and only the two documented exceptions may be thrown.
#include <algorithm>
#include <new>
#include <stdexcept>

#include "OrvLibrary/host/ZipUtils.h"
#include "fuzz/ArchiveFacts.h"
#include "fuzz/FuzzSandbox.h"

using fuzz::JudgedMember;
using fuzz::require;

namespace {

using Content = std::optional<std::string>;

/// The result of `read`; none if it throws a documented exception.
template <class Function>
auto resultOf(Function read) -> std::optional<decltype(read())>
try {
    return read();
} catch (const std::bad_alloc&) {
    return std::nullopt;
} catch (const std::runtime_error&) {
    return std::nullopt;
} catch (...) {
    fuzz::fail("only std::runtime_error and std::bad_alloc leave");
}

Content readWhole(const fileString& address)
{
    return resultOf([&] {
        std::string content;
        int pieces = 0;
        ZipUtils::writeFileDataFromArchive(address, [&](const std::vector<unsigned char>& data) {
            content.assign(data.begin(), data.end());
            ++pieces;
        });
        require(pieces == 1, "the whole comes in one piece");
        return content;
    });
}

Content readInPieces(const fileString& address, std::size_t pieceSize)
{
    return resultOf([&] {
        ZipUtils::ZipInputStream stream(address);
        std::string content;
        while (stream.isFileOpen() && !stream.reachedEOF()) {
            const std::vector<unsigned char> piece = stream.readArchivedFile(pieceSize);
            require(!piece.empty() && piece.size() <= pieceSize, "a piece has the size that was asked for");
            content.append(piece.begin(), piece.end());
        }
        require(stream.readArchivedFile(pieceSize).empty(), "nothing comes after the end");
        return content;
    });
}

void checkMember(const fileString& archive, const JudgedMember& member, std::size_t oddity)
{
    const fileString address = archive + ZipUtils::getDelimiter() + fileString(member.name);
    const Content whole = readWhole(address);
    // At most a few dozen pieces per member, whatever its size.
    const std::size_t pieceSize = 1 + oddity % 7 + member.facts.size / 40;
    require(whole == readInPieces(address, pieceSize), "both ways of reading give the same");
    require(whole == member.content, "the content is what the compression library finds");
    const std::uint64_t bound = 1100 * member.facts.compressed.size() + (1U << 20U);
    require(!whole || whole->size() <= bound, "a member is bounded by its compressed size");
}

/// @return whether the walk succeeded
bool walk(const fileString& archive, const std::vector<JudgedMember>& members, std::size_t oddity)
{
    const auto lasts = fuzz::lastOfEachName(members);
    const auto lastOf = [&](const std::string& name) {
        return *std::find_if(lasts.begin(), lasts.end(), [&](const auto* m) { return m->name == name; });
    };
    std::size_t count = 0;
    const auto done = resultOf([&] {
        ZipUtils::getFilesDataInArchive(archive, [&](const fileString& name, auto&, const auto&) {
            require(count < members.size() && members[count].name == name.toNativeString(),
                    "the walk goes in the order of the directory");
            // Every other walk leaves checking the data to its end.
            if (oddity % 2 == 0)
                checkMember(archive, *lastOf(name.toNativeString()), oddity);
            ++count;
            return true;
        });
        return true;
    });
    require(count == members.size(), "the walk hands out every member");
    return done.has_value();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const fuzz::Sandbox& sandbox = fuzz::Sandbox::get();
    const fileString archive = sandbox.write("archive.zip", fuzz::textOf(data, size));
    const auto names = resultOf([&] { return ZipUtils::getFilenamesInArchive(archive); });
    const auto total = resultOf([&] { return ZipUtils::getSizeOfArchive(archive); });
    const auto members = fuzz::judgeArchive(archive);
    require(names.has_value() == members.has_value() && total.has_value() == members.has_value(),
            "all agree on which archive is sound");
    if (!members) {
        const auto isWalked = resultOf([&] {
            ZipUtils::getFilesDataInArchive(archive, [](auto&, auto&, auto&) { return true; });
            return true;
        });
        require(!isWalked, "an unsound archive is not walked");
        return 0;
    }
    require(names->size() == members->size(), "there are as many names as members");
    const bool isSound =
        std::none_of(members->begin(), members->end(), [](const auto& m) { return m.isUnsound; });
    require(walk(archive, *members, size) == isSound,
            "a walk ends well when all data is sound, and only then");
    for (const JudgedMember* member : fuzz::lastOfEachName(*members))
        checkMember(archive, *member, size);
    return 0;
}
