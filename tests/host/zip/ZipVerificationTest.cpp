#include "OrvLibrary/host/impl/zip/ZipVerification_p.h"

#include <stdexcept>

#include "tests/host/zip/RawCopyTest.h"
#include "tests/support/NoMoreThreads.h"
#include "tests/support/RecordingProgress.h"

using test::ArchiveBuilder;
using test::ArchiveMember;
using ZipUtils::ArchiveBatch;

namespace {

class ZipVerificationTest : public test::RawCopyTest
{
};

} // namespace

TEST_F(ZipVerificationTest, membersOfAnArchiveAreVerifiedInThatArchive)
{
    mSource.add("bad", "1").checksum = 1;
    mSource.add("last", "2");
    ArchiveBuilder other;
    other.add("sound", "3");
    const fileString source = writeSource();
    const fileString sound = other.write(mFolder, "sound.zip");
    ArchiveBatch batch(nullptr);
    const auto walkBoth = [&] {
        batch.walk(source, [&](const fileString& member, auto&, const auto&) {
            if (member.toNativeString() == "last")
                batch.walk(sound, [](const auto&, auto&, const auto&) { return true; });
            return member.toNativeString() != "last";
        });
    };
    EXPECT_THROW(walkBoth(), std::runtime_error);
}

TEST_F(ZipVerificationTest, cancelIsHeardInTheMiddleOfALargeMember)
{
    const test::NoMoreThreads none; // so the walk's own thread verifies it
    mSource.add("large", std::string(24U << 20U, 'x')).method = ArchiveMember::kStored;
    const auto progress = std::make_shared<test::RecordingProgress>();
    ArchiveBatch batch(progress);
    batch.walk(writeSource(), [](const auto&, auto&, const auto&) { return true; });
    EXPECT_GE(progress->checks(), 3);
}
