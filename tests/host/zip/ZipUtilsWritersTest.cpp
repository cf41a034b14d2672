// Raw copies of archives that other programs wrote, checked with two further readers.
#include <cstdlib>
#include <filesystem>
#include <stdexcept>

#include <QProcess>
#include <gtest/gtest.h>
#include <minizip/zip.h>

#include "OrvLibrary/host/ZipUtils.h"
#include "tests/support/ArchiveBuilder.h"

namespace fs = std::filesystem;

namespace {

struct RunResult
{
    int status = -1; ///< -1 when the program is missing
    std::string out;
};

RunResult run(const std::string& folder, const QString& program, const QStringList& arguments)
{
    QProcess process;
    process.setWorkingDirectory(QString::fromStdString(folder));
    process.setProcessChannelMode(QProcess::MergedChannels);
    process.start(program, arguments);
    if (!process.waitForFinished(60000))
        return {};
    return {process.exitCode(), process.readAllStandardOutput().toStdString()};
}

/// A Python script that prints one line per member and fails on a wrong checksum. It omits what a raw copy
/// may change: offsets, the descriptor flag and zip64 fields.
const char kDescribe[] = R"(
import struct, sys, zipfile
def kept(extra):
    out = b''
    while len(extra) >= 4:
        kind, size = struct.unpack('<HH', extra[:4])
        if kind != 1:
            out += extra[:4 + size]
        extra = extra[4 + size:]
    return out
with zipfile.ZipFile(sys.argv[1]) as archive:
    assert archive.testzip() is None
    for i in archive.infolist():
        print(ascii((i.filename, i.compress_type, i.CRC, i.compress_size, i.file_size, i.date_time,
                     i.create_system, i.create_version, i.external_attr, i.internal_attr, i.comment,
                     kept(i.extra), i.flag_bits & ~8)))
)";

const char kWrite[] = R"(
import sys, zipfile
with zipfile.ZipFile(sys.argv[1], 'w', zipfile.ZIP_DEFLATED) as archive:
    for name in sys.argv[2:]:
        archive.write(name)
    stored = zipfile.ZipInfo('stored \u00fc.bin', (1999, 12, 31, 23, 59, 58))
    stored.comment = 'Bemerkung \u00fc'.encode()
    archive.writestr(stored, b'stored content')
    with archive.open(zipfile.ZipInfo('wide.bin'), 'w', force_zip64=True) as wide:
        wide.write(b'x' * 1000)
    archive.comment = b'of the archive'
)";

class ZipUtilsWritersTest : public testing::Test
{
protected:
    ZipUtilsWritersTest()
    {
        mFolder.write("files/plain.txt", test::sampleBytes(5000, 1));
        mFolder.write("files/random.bin", test::sampleBytes(300000, 2));
        mFolder.write("files/empty", "");
        mFolder.write("files/K\xC3\xBC"
                      "che/\xE2\x82\xAC 1.png",
                      test::sampleBytes(900, 3));
        mFolder.write("files/run.sh", "#!/bin/sh\n");
        fs::permissions(files("run.sh"), static_cast<fs::perms>(0755));
        fs::create_symlink("plain.txt", files("link"));
        fs::last_write_time(files("plain.txt"),
                            fs::file_time_type::clock::now() - std::chrono::hours(24 * 700));
    }

    std::string files(const std::string& name = {}) const { return mFolder.path() + "/files/" + name; }
    std::string source() const { return mFolder.path() + "/source.zip"; }
    std::string copy() const { return mFolder.path() + "/copy.zip"; }

    /// Writes the source archive with another archiver.
    bool write(const QString& program, const QStringList& arguments) const
    {
        const RunResult result = run(files(), program, arguments);
        if (result.status > 0)
            throw std::runtime_error(result.out);
        return result.status == 0;
    }

    std::string describe(const std::string& archive) const
    {
        const RunResult result =
            run(mFolder.path(), "python3", {"-c", kDescribe, QString::fromStdString(archive)});
        EXPECT_EQ(result.status, 0) << result.out;
        return result.out;
    }

    /// Copies every member and compares the copy with the original using two other readers.
    void expectFaithfulCopy() const
    {
        ZipUtils::getFilesDataInArchive(fileString(source()), [&](const fileString& name, auto& handle,
                                                                  const auto& raw) {
            EXPECT_TRUE(ZipUtils::writeFileToArchiveRaw(fileString(copy()), name, handle, true, raw)) << name;
            return true;
        });
        const std::string original = describe(source());
        EXPECT_FALSE(original.empty());
        EXPECT_EQ(describe(copy()), original);
        const RunResult unzip = run(mFolder.path(), "unzip", {"-t", "copy.zip"});
        EXPECT_EQ(unzip.status, 0) << unzip.out;
    }

    void expectSymbolicLink() const
    {
        const RunResult result = run(mFolder.path(), "unzip", {"-q", "copy.zip", "-d", "out"});
        EXPECT_EQ(result.status, 0) << result.out;
        EXPECT_TRUE(fs::is_symlink(mFolder.path() + "/out/link"));
        EXPECT_EQ(fs::read_symlink(mFolder.path() + "/out/link"), "plain.txt");
    }

    test::TempFolder mFolder;
};

} // namespace

TEST_F(ZipUtilsWritersTest, zip)
{
    ASSERT_TRUE(write("zip", {"-q", "-r", "-y", "../source.zip", "."}))
        << "no archive by zip, which script/setup installs";
    expectFaithfulCopy();
    expectSymbolicLink();
}

TEST_F(ZipUtilsWritersTest, zipAsAStream)
{
    // zip cannot store a link in a stream. 7z can; see below.
    fs::remove(files("link"));
    ASSERT_TRUE(write("bash", {"-o", "pipefail", "-c", "zip -q -r - . | cat > ../source.zip"}))
        << "no archive by zip, which script/setup installs";
    expectFaithfulCopy();
}

TEST_F(ZipUtilsWritersTest, sevenZip)
{
    ASSERT_TRUE(write("7z", {"a", "-tzip", "-snl", "-mcu=on", "../source.zip", "."}))
        << "no archive by 7z, which script/setup installs";
    expectFaithfulCopy();
    expectSymbolicLink();
}

TEST_F(ZipUtilsWritersTest, sevenZipAsAStream)
{
    ASSERT_TRUE(write(
        "bash", {"-o", "pipefail", "-c", "7z a -tzip -snl -mcu=on -so archive . | cat > ../source.zip"}))
        << "no archive by 7z, which script/setup installs";
    expectFaithfulCopy();
    expectSymbolicLink();
}

TEST_F(ZipUtilsWritersTest, bsdtar)
{
    ASSERT_TRUE(write("bsdtar", {"-c", "-f", "../source.zip", "--format", "zip", "."}))
        << "no archive by bsdtar, which script/setup installs";
    // bsdtar marks links only by the external attributes and the system in the directory.
    expectFaithfulCopy();
    expectSymbolicLink();
}

TEST_F(ZipUtilsWritersTest, python)
{
    ASSERT_TRUE(
        write("python3", {"-c", kWrite, "../source.zip", "plain.txt", "random.bin", "empty", "run.sh"}))
        << "no archive by python3, which script/setup installs";
    expectFaithfulCopy();
    EXPECT_EQ(describe(copy()).find("wide.bin") == std::string::npos, false);
}

TEST_F(ZipUtilsWritersTest, libzip)
{
    ASSERT_TRUE(write("ziptool", {"../source.zip", "add_file", "plain.txt", "plain.txt", "0", "0", "add_file",
                                  "K\xC3\xBC"
                                  "che.bin",
                                  "random.bin", "0", "0", "add", "small", "text", "set_file_comment", "0",
                                  "a comment", "set_archive_comment", "of the archive"}))
        << "no archive by ziptool, which script/setup installs";
    expectFaithfulCopy();
}

TEST_F(ZipUtilsWritersTest, minizip)
{
    const std::string content = test::sampleBytes(70000, 9);
    const zipFile file = zipOpen64(source().c_str(), APPEND_STATUS_CREATE);
    ASSERT_NE(file, nullptr);
    for (const int zip64 : {0, 1}) {
        zip_fileinfo info = {};
        info.tmz_date.tm_year = 2001;
        info.tmz_date.tm_mday = 9;
        info.internal_fa = 1;
        info.external_fa = 0100640U << 16U;
        const std::string name = "member" + std::to_string(zip64);
        ASSERT_EQ(zipOpenNewFileInZip64(file, name.c_str(), &info, "LL\x01\0x", 5, "CC\x01\0y", 5,
                                        "a comment", Z_DEFLATED, 9, zip64),
                  ZIP_OK);
        ASSERT_EQ(zipWriteInFileInZip(file, content.data(), static_cast<unsigned>(content.size())), ZIP_OK);
        ASSERT_EQ(zipCloseFileInZip(file), ZIP_OK);
    }
    ASSERT_EQ(zipClose(file, "of the archive"), ZIP_OK);
    expectFaithfulCopy();
}
