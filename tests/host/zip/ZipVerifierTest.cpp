#include "OrvLibrary/host/impl/zip/ZipVerifier_p.h"

#include <gmock/gmock.h>

#include "tests/support/ArchiveBuilder.h"

using test::ArchiveMember;

namespace {

class ZipVerifierTest : public testing::Test
{
protected:
    /// The pieces in which the first member is verified.
    std::vector<std::uint64_t> piecesOf(const test::ArchiveBuilder& builder) const
    {
        std::vector<std::uint64_t> pieces;
        const ZipUtils::ZipArchive archive(builder.write(mFolder, "a.zip"));
        ZipUtils::ZipVerifier verifier([&](std::uint64_t bytes) { pieces.push_back(bytes); });
        verifier.verify(archive, archive.entries()[0]);
        return pieces;
    }

    test::TempFolder mFolder;
    test::ArchiveBuilder mBuilder;
};

} // namespace

TEST_F(ZipVerifierTest, memberOfAFewMegabytesIsOnePiece)
{
    mBuilder.add("a", std::string(8U << 20U, '\0'));
    EXPECT_THAT(piecesOf(mBuilder), testing::ElementsAre(8U << 20U));
}

TEST_F(ZipVerifierTest, largeMemberThatCompressesWellIsVerifiedInPieces)
{
    mBuilder.add("a", std::string(20U << 20U, '\0'));
    EXPECT_THAT(piecesOf(mBuilder), testing::AllOf(testing::SizeIs(20), testing::Each(1U << 20U)));
}

TEST_F(ZipVerifierTest, smallMemberInALargeStreamIsVerifiedInPieces)
{
    // Empty blocks make the stream long.
    ArchiveMember& member = mBuilder.add("a", std::string(3U << 20U, 'x'));
    const std::string emptyBlock("\x00\x00\x00\xFF\xFF", 5);
    std::string stream;
    while (stream.size() <= 8U << 20U)
        stream += emptyBlock;
    member.rawData = stream + test::deflated(member.content);
    EXPECT_THAT(piecesOf(mBuilder), testing::SizeIs(3));
}
