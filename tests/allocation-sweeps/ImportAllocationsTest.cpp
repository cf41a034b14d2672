// Failing allocations in archives and files.
#include <gtest/gtest.h>

#include "OrvLibrary/IO/Base64.h"
#include "OrvLibrary/IO/LibraryImport.h"
#include "OrvLibrary/Utility/StringConversion.h"
#include "OrvLibrary/host/FileUtils.h"
#include "OrvLibrary/host/SHA1.h"
#include "OrvLibrary/host/ZipUtils.h"
#include "tests/allocation-sweeps/AllocationPlan.h"
#include "tests/allocation-sweeps/AllocationScenario.h"
#include "tests/support/ArchiveBuilder.h"

using test::AllocationScenario;
using test::CountedAllocations;
using test::sampleBytes;

namespace {

class QuietProgress : public ProgressSubject
{
public:
    bool checkCancel(bool) override { return false; }
    void createSubProgress(std::uint64_t) override {}
    void increment(const marl::unicode::String&, const marl::unicode::String&) override {}
    void updateLabels(const marl::unicode::String&, const marl::unicode::String&) override {}
};

/// Cancels at the question with this number, and at all later ones.
class CancellingProgress : public QuietProgress
{
public:
    explicit CancellingProgress(int at) : mLeft(at) {}
    bool checkCancel(bool) override { return --mLeft <= 0; }

private:
    int mLeft;
};

test::ArchiveBuilder archive(unsigned seed)
{
    test::ArchiveBuilder builder;
    builder.add("textures/oak.jpg", sampleBytes(3000, seed));
    builder.add("textures/of a rather long name/T\xc3\xbcr.png", sampleBytes(2000, seed + 1));
    return builder;
}

/// Large enough to be verified on several threads, as whole members and in pieces.
test::ArchiveBuilder largeArchive(unsigned seed)
{
    constexpr std::size_t kMegabyte = 1U << 20U;
    test::ArchiveBuilder builder = archive(seed);
    for (int i = 0; i < 8; ++i) {
        builder.add("deflated " + std::to_string(i) + ".bmp", std::string(kMegabyte, 'y'));
        builder.add("stored " + std::to_string(i) + ".bmp", sampleBytes(5000, seed)).method =
            test::ArchiveMember::kStored;
    }
    return builder;
}

class Unpack : public AllocationScenario
{
public:
    using AllocationScenario::AllocationScenario;

    void prepare() override
    {
        test::ArchiveBuilder builder = archive(1);
        builder.add("Kitchen.orvlib", sampleBytes(5000, 3));
        builder.write(host().folder(), "user/Kitchen.orvlibz");
        host().folder().write("user/Kitchen.orvlib", "an older database");
        archive(9).write(host().folder(), "user/Kitchen.zip");
    }
    void act() override
    {
        const CountedAllocations counted;
        LibraryImport::unpack(host().folder().file("user/Kitchen.orvlibz"), false, mProgress);
    }
    bool mayThrow() const override { return true; }
    /// The targets are checked before they are written, and members that cannot be copied are skipped.
    bool isExcepted(const std::string& name) const override { return name != "user/Kitchen.orvlibz"; }
    /// After a failure the older archive beside it may be gone or incomplete. The next run then adds its
    /// members to what is left.
    bool mayStayOut(const std::string& name) const override { return name == "user/Kitchen.zip"; }

private:
    std::shared_ptr<ProgressSubject> mProgress = std::make_shared<QuietProgress>();
};

/// Is cancelled before the last member, when a database and pictures are written already.
class CancelUnpack : public Unpack
{
public:
    using Unpack::Unpack;

    void prepare() override
    {
        test::ArchiveBuilder builder = archive(1);
        builder.add("Kitchen.orvlib", sampleBytes(5000, 3));
        builder.add("last.jpg", sampleBytes(1000, 4));
        builder.write(host().folder(), "user/Kitchen.orvlibz");
    }
    void act() override
    {
        const fileString source = host().folder().file("user/Kitchen.orvlibz");
        const auto progress = std::make_shared<CancellingProgress>(4);
        const CountedAllocations counted;
        EXPECT_EQ(LibraryImport::unpack(source, true, progress), LibraryImport::UnpackResult());
    }
    bool isExcepted(const std::string&) const override { return false; }
};

class PlaceTextures : public AllocationScenario
{
public:
    using AllocationScenario::AllocationScenario;

    void putBack() override { archive(1).write(host().folder(), "temp/extracted.zip"); }
    void act() override
    {
        const CountedAllocations counted;
        LibraryImport::moveArchivedTextures(host().folder().file("temp/extracted.zip"),
                                            host().folder().file("textures/Kitchen.zip"), mProgress);
    }
    bool mayThrow() const override { return true; } // until the operation starts
    bool isExcepted(const std::string& name) const override { return name == "temp/extracted.zip"; }

private:
    std::shared_ptr<ProgressSubject> mProgress = std::make_shared<QuietProgress>();
};

class MergeTextures : public PlaceTextures
{
public:
    using PlaceTextures::PlaceTextures;

    void prepare() override
    {
        test::ArchiveBuilder old = archive(5);
        old.add("kept.txt", "kept");
        old.write(host().folder(), "textures/Kitchen.zip");
    }
};

class UnpackMuch : public Unpack
{
public:
    using Unpack::Unpack;

    void prepare() override
    {
        static const std::string packed = [] {
            test::ArchiveBuilder builder = largeArchive(1);
            builder.add("Kitchen.orvlib", sampleBytes(5000, 3));
            return builder.bytes();
        }();
        host().folder().write("user/Kitchen.orvlibz", packed);
        host().folder().write("user/Kitchen.orvlib", "an older database");
    }
    bool hasHelpers() const override { return true; }
};

class MergeMuch : public MergeTextures
{
public:
    using MergeTextures::MergeTextures;

    void putBack() override
    {
        static const std::string extracted = largeArchive(1).bytes();
        host().folder().write("temp/extracted.zip", extracted);
    }
    bool hasHelpers() const override { return true; }
};

class Files : public AllocationScenario
{
public:
    using AllocationScenario::AllocationScenario;

    void prepare() override
    {
        host().folder().write("user/source file with a long name", sampleBytes(4000, 1));
        host().folder().write("user/target file with a long name", "old");
    }
    void act() override
    {
        const fileString source = host().folder().file("user/source file with a long name");
        const fileString target = host().folder().file("user/target file with a long name");
        const fileString third = host().folder().file("user/third file with a long name");
        const CountedAllocations counted;
        FileUtils::createDirectoriesWithPerm(host().folder().file("user/folder/in a folder/"), false);
        FileUtils::copyFile(source, target, true);
        FileUtils::copyFile(target, third, true);
        FileUtils::renameFile(third, target);
        SHA1::fileContentsToSHA1Hex(target);
        FileUtils::removeDirectoryAndFiles(host().folder().file("user/folder"), 1);
    }
    bool mayThrow() const override { return true; } // these are host services
    /// The first operations create these files and the last ones remove them.
    bool isExcepted(const std::string& name) const override
    {
        return name == "user/third file with a long name" || name.rfind("user/folder/", 0) == 0;
    }
};

class Texts : public AllocationScenario
{
public:
    using AllocationScenario::AllocationScenario;

    void act() override
    {
        const std::vector<unsigned char> bytes(500, 'b');
        const CountedAllocations counted;
        EXPECT_EQ(Base64::decode(Base64::encode(bytes)), bytes);
        EXPECT_EQ(Library::toUTF8(Library::toWindows1252("T\xc3\xbcren und Fenster aller Art")),
                  "T\xc3\xbcren und Fenster aller Art");
    }
    bool mayThrow() const override { return true; } // values are returned
};

class ImportAllocations : public testing::Test
{
protected:
    template <class Scenario>
    void sweep()
    {
        Scenario(mHost).sweep();
    }

    test::ScopedHost mHost;
};

} // namespace

TEST_F(ImportAllocations, unpackingLeavesNoHalfFile)
{
    sweep<Unpack>();
}

TEST_F(ImportAllocations, cancelledUnpackingLeavesNothing)
{
    sweep<CancelUnpack>();
}

TEST_F(ImportAllocations, placingTexturesLeavesNoHalfArchive)
{
    sweep<PlaceTextures>();
}

TEST_F(ImportAllocations, mergingTexturesLosesNone)
{
    sweep<MergeTextures>();
}

TEST_F(ImportAllocations, unpackingMuchLeavesNoHalfFile)
{
    sweep<UnpackMuch>();
}

TEST_F(ImportAllocations, mergingManyTexturesLosesNone)
{
    sweep<MergeMuch>();
}

TEST_F(ImportAllocations, copyingAndMovingLosesNoFile)
{
    sweep<Files>();
}

TEST_F(ImportAllocations, encodingsSayThatThereIsNoMemory)
{
    sweep<Texts>();
}
