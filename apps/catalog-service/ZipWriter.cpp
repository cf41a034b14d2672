#include "apps/catalog-service/ZipWriter.h"

#include <cstdio>
#include <fstream>
#include <stdexcept>
#include <vector>

#include <minizip/zip.h>

#include "OrvLibrary/host/FileReaper.h"
#include "OrvLibrary/host/FileUtils.h"

namespace {

constexpr std::size_t kPiece = 1 << 20;
constexpr uLong kUtf8Names = 1 << 11;
constexpr uLong kMadeOnUnix = (3 << 8) | 30;
constexpr uLong kPlainFile = 0100644uL << 16;
constexpr uLong kFixedDosDate = ((2026uL - 1980) << 25) | (1uL << 21) | (1uL << 16); // 2026-01-01 00:00:00

} // namespace

class ZipWriter::Private
{
public:
    explicit Private(const std::string& target)
        : path(target),
          beside(target + ".orv-new"),
          guard(beside),
          file(zipOpen64(target.find('\0') == std::string::npos ? beside.toNativeString().c_str() : "",
                         APPEND_STATUS_CREATE))
    {
        if (!file)
            fail("cannot be created");
    }
    ~Private()
    {
        if (file)
            zipClose(file, nullptr);
    }

    [[noreturn]] void fail(const std::string& what) const
    {
        throw std::runtime_error(path.toNativeString() + ": " + what);
    }

    void openMember(const std::string& name)
    {
        zip_fileinfo info = {};
        info.dosDate = kFixedDosDate;
        info.external_fa = kPlainFile;
        if (zipOpenNewFileInZip4_64(file, name.c_str(), &info, nullptr, 0, nullptr, 0, nullptr, Z_DEFLATED,
                                    Z_DEFAULT_COMPRESSION, 0, -MAX_WBITS, DEF_MEM_LEVEL, Z_DEFAULT_STRATEGY,
                                    nullptr, 0, kMadeOnUnix, kUtf8Names, 0) != ZIP_OK)
            fail("the member " + name + " cannot be written");
    }

    void write(const char* data, std::size_t size)
    {
        if (zipWriteInFileInZip(file, data, static_cast<unsigned>(size)) != ZIP_OK)
            fail("cannot be written");
    }

    void closeMember()
    {
        if (zipCloseFileInZip(file) != ZIP_OK)
            fail("cannot be written");
    }

    const fileString path;
    const fileString beside;
    FileReaper guard; // deletes the unfinished file; after the rename there is nothing of that name
    zipFile file;
};

ZipWriter::ZipWriter(const std::string& path) : mPrivate(new Private(path)) {}

ZipWriter::~ZipWriter() = default;

void ZipWriter::add(const std::string& name, const std::string& content)
{
    mPrivate->openMember(name);
    for (std::size_t at = 0; at < content.size(); at += kPiece)
        mPrivate->write(content.data() + at, std::min(kPiece, content.size() - at));
    mPrivate->closeMember();
}

void ZipWriter::addFile(const std::string& name, const std::string& path)
{
    std::ifstream stream(path, std::ios::binary);
    if (!stream)
        throw std::runtime_error(path + ": cannot be read");
    mPrivate->openMember(name);
    std::vector<char> piece(kPiece);
    while (stream.read(piece.data(), static_cast<std::streamsize>(piece.size())) || stream.gcount() > 0)
        mPrivate->write(piece.data(), static_cast<std::size_t>(stream.gcount()));
    if (stream.bad())
        throw std::runtime_error(path + ": cannot be read");
    mPrivate->closeMember();
}

void ZipWriter::close()
{
    const zipFile file = mPrivate->file;
    mPrivate->file = nullptr;
    if (zipClose(file, nullptr) != ZIP_OK || !FileUtils::renameFile(mPrivate->beside, mPrivate->path))
        mPrivate->fail("cannot be written");
}
