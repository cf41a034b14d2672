#include "OrvLibrary/host/impl/zip/ZipOutput_p.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>

#include <gmock/gmock.h>

#include "OrvLibrary/host/impl/files/FileHandle_p.h"
#include "tests/support/TempFolder.h"

namespace {

TEST(ZipOutput, aSourceThatWasCutMeanwhileIsNamedAndNothingIsLeft)
{
    const test::TempFolder folder;
    const fileString source = folder.write("source.zip", std::string(50, 's'));
    const host::FileHandle file = host::openFile(source.toNativeString(), O_RDONLY);
    for (const std::uint64_t size : {51U, 100'000U}) {
        ZipUtils::ZipMeter meter(nullptr);
        ZipUtils::ZipPatience patience(meter);
        ZipUtils::ZipOutput output(folder.file("target.zip"), patience, meter);
        EXPECT_THAT([&] { output.appendRange(file.get(), 0, size, source); },
                    testing::ThrowsMessage<std::runtime_error>(source.toNativeString() + ": cut short"))
            << size;
    }
    EXPECT_EQ(test::listTree(folder.path()), std::vector<std::string>{"source.zip"});
}

TEST(ZipOutput, oneByteIsCopiedToo)
{
    const test::TempFolder folder;
    const fileString source = folder.write("source.zip", "ab");
    const host::FileHandle file = host::openFile(source.toNativeString(), O_RDONLY);
    ZipUtils::ZipMeter meter(nullptr);
    ZipUtils::ZipPatience patience(meter);
    ZipUtils::ZipOutput output(folder.file("target.zip"), patience, meter);
    output.appendRange(file.get(), 1, 1, source);
    output.flush();
    output.publish();
    EXPECT_EQ(test::readFile(folder.file("target.zip")), "b");
}

TEST(ZipOutput, aSourceThatCannotBeReadIsToldWithTheSystemsReason)
{
    const test::TempFolder folder;
    const fileString source = folder.write("source.zip", std::string(50, 's'));
    const host::FileHandle file = host::openFile(source.toNativeString(), O_WRONLY);
    ZipUtils::ZipMeter meter(nullptr);
    ZipUtils::ZipPatience patience(meter);
    ZipUtils::ZipOutput output(folder.file("target.zip"), patience, meter);
    EXPECT_THAT(
        [&] { output.appendRange(file.get(), 0, 50, source); },
        testing::ThrowsMessage<std::runtime_error>(source.toNativeString() + ": " + std::strerror(EBADF)));
}

} // namespace
