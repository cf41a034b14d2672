// How it works: the zip library writes the archive to a locked file beside its path. Files that are
// compressed already, such as pictures, are stored. `PieceDeflater` compresses all others on all processors,
// and the zip library gets the raw result. `close` completes the archive, syncs the file and renames it.
#include "apps/catalog-service/ZipWriter.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <cerrno>
#include <cstring>
#include <fstream>
#include <sstream>
#include <stdexcept>

#include <minizip/zip.h>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include "OrvLibrary/host/FileUtils.h"
#include "apps/catalog-service/PieceDeflater.h"

namespace {

constexpr std::size_t kPiece = 1 << 20;
constexpr uLong kUtf8Names = 1 << 11;
constexpr uLong kMadeOnUnix = (3 << 8) | 30;
constexpr uLong kPlainFile = 0100644uL << 16;
constexpr uLong kFixedDosDate = ((2026uL - 1980) << 25) | (1uL << 21) | (1uL << 16); // 2026-01-01 00:00:00
constexpr mode_t kMode = 0666;

/// Whether compressing the file would not make it smaller.
bool isCompressedAlready(const std::string& name)
{
    static const std::array<const char*, 20> kExtensions{
        ".png", ".jpg", ".jpeg", ".jpe", ".gif", ".webp", ".avif", ".heic", ".jp2", ".jxl",
        ".zip", ".7z",  ".gz",   ".bz2", ".xz",  ".zst",  ".mp3",  ".mp4",  ".ogg", ".webm"};
    std::string extension = fileString(name).extension().toNativeString();
    std::transform(extension.begin(), extension.end(), extension.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return std::find(kExtensions.begin(), kExtensions.end(), extension) != kExtensions.end();
}

/// The file beside the archive's path. It is locked, so that two programs never write the same one.
class FileBeside
{
public:
    explicit FileBeside(const fileString& target) : path(target + fileString(".orv-new"))
    {
        const std::string name = target.toNativeString();
        if (name.find('\0') != std::string::npos)
            throw std::runtime_error(name + ": cannot be created");
        mDescriptor = open(path.toNativeString().c_str(), O_RDWR | O_CREAT | O_CLOEXEC, kMode);
        if (mDescriptor < 0)
            throw std::runtime_error(name + ": cannot be created: " + std::strerror(errno));
        const bool isTaken = flock(mDescriptor, LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK;
        if (isTaken || !isNamed()) {
            ::close(mDescriptor);
            throw std::runtime_error(name + ": another program is writing it");
        }
    }

    /// Removes the file unless it has the archive's name.
    ~FileBeside()
    {
        if (isNamed())
            FileUtils::removePath(path);
        ::close(mDescriptor);
    }

    FileBeside(const FileBeside&) = delete;
    FileBeside& operator=(const FileBeside&) = delete;

    /// Syncs the file and gives it the archive's name.
    bool complete(const fileString& target) const
    {
        return fsync(mDescriptor) == 0 && FileUtils::renameFile(path, target);
    }

    const fileString path;

private:
    /// Whether the path still belongs to this file. Another program may have renamed or removed it before it
    /// was locked.
    bool isNamed() const
    {
        struct stat open
        {
        };
        struct stat named
        {
        };
        return fstat(mDescriptor, &open) == 0 && stat(path.toNativeString().c_str(), &named) == 0 &&
               open.st_ino == named.st_ino && open.st_dev == named.st_dev;
    }

    int mDescriptor;
};

} // namespace

class ZipWriter::Private
{
public:
    explicit Private(const std::string& target)
        : path(target),
          beside(path),
          file(zipOpen64(beside.path.toNativeString().c_str(), APPEND_STATUS_CREATE))
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

    void add(const std::string& name, std::istream& content)
    {
        const bool isStored = isCompressedAlready(name);
        openMember(name, isStored ? 0 : Z_DEFLATED);
        isStored ? store(content) : deflate(content);
    }

    const fileString path;
    FileBeside beside;
    zipFile file;
    Progress progress;

private:
    void openMember(const std::string& name, int method) const
    {
        zip_fileinfo info = {};
        info.dosDate = kFixedDosDate;
        info.external_fa = kPlainFile;
        const int isRaw = method == Z_DEFLATED ? 1 : 0; // we compress ourselves
        if (zipOpenNewFileInZip4_64(file, name.c_str(), &info, nullptr, 0, nullptr, 0, nullptr, method,
                                    Z_DEFAULT_COMPRESSION, isRaw, -MAX_WBITS, DEF_MEM_LEVEL,
                                    Z_DEFAULT_STRATEGY, nullptr, 0, kMadeOnUnix, kUtf8Names, 0) != ZIP_OK)
            fail("the member " + name + " cannot be written");
    }

    void store(std::istream& content) const
    {
        std::string piece(kPiece, '\0');
        while (content.read(piece.data(), static_cast<std::streamsize>(piece.size())) ||
               content.gcount() > 0) {
            write(piece.data(), static_cast<std::size_t>(content.gcount()));
            tell(static_cast<std::size_t>(content.gcount()));
        }
        if (zipCloseFileInZip(file) != ZIP_OK)
            fail("cannot be written");
    }

    void deflate(std::istream& content) const
    {
        const PieceDeflater::Result result =
            PieceDeflater::run(content, [this](const std::string& compressed, std::size_t contentSize) {
                write(compressed.data(), compressed.size());
                tell(contentSize);
            });
        if (zipCloseFileInZipRaw64(file, result.size, result.checksum) != ZIP_OK)
            fail("cannot be written");
    }

    void write(const char* data, std::size_t size) const
    {
        if (zipWriteInFileInZip(file, data, static_cast<unsigned>(size)) != ZIP_OK)
            fail("cannot be written");
    }

    void tell(std::size_t bytes) const
    {
        if (progress)
            progress(bytes);
    }
};

ZipWriter::ZipWriter(const std::string& path) : mPrivate(new Private(path)) {}

ZipWriter::~ZipWriter() = default;

void ZipWriter::setProgress(const Progress& progress)
{
    mPrivate->progress = progress;
}

void ZipWriter::add(const std::string& name, const std::string& content)
{
    std::istringstream stream(content);
    mPrivate->add(name, stream);
}

void ZipWriter::addFile(const std::string& name, const std::string& path)
{
    std::ifstream stream(path, std::ios::binary);
    if (!stream)
        throw std::runtime_error(path + ": cannot be read");
    mPrivate->add(name, stream);
    if (stream.bad())
        throw std::runtime_error(path + ": cannot be read");
}

void ZipWriter::close()
{
    const zipFile file = mPrivate->file;
    mPrivate->file = nullptr;
    if (zipClose(file, nullptr) != ZIP_OK || !mPrivate->beside.complete(mPrivate->path))
        mPrivate->fail("cannot be written");
}
