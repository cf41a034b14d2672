// How it works: a stream for reading or appending locks the file itself. A stream for writing uses a
// `ReplacementFile`, and its buffer writes to a second descriptor of the file beside. `close` writes the
// rest, checks that no write has failed, and commits the replacement. Without `close`, the destructor of the
// replacement removes the file.
#include "OrvLibrary/host/LockingFStream.h"

#include <cerrno>
#include <ext/stdio_filebuf.h>
#include <fcntl.h>
#include <locale>
#include <sys/file.h>

#include "OrvLibrary/host/impl/files/FileHandle_p.h"
#include "OrvLibrary/host/impl/files/ReplacementFile_p.h"

namespace {

constexpr std::size_t kBufferSize = 64 * 1024;

/// Remembers the first failed write, even if the caller writes directly to the buffer, where the stream does
/// not notice.
class CheckedBuffer : public __gnu_cxx::stdio_filebuf<char>
{
public:
    using Base = __gnu_cxx::stdio_filebuf<char>;

    CheckedBuffer() = default;
    CheckedBuffer(int descriptor, std::ios_base::openmode mode) : Base(descriptor, mode, kBufferSize) {}
    CheckedBuffer& operator=(CheckedBuffer&&) = default;

    /// The system's reason for the first failure; 0 if there was none.
    int failure() const { return mFailure; }

protected:
    int_type overflow(int_type character) override
    {
        const int_type result = Base::overflow(character);
        note(traits_type::eq_int_type(result, traits_type::eof()));
        return result;
    }

    std::streamsize xsputn(const char* text, std::streamsize size) override
    {
        const std::streamsize written = Base::xsputn(text, size);
        note(written != size);
        return written;
    }

    int sync() override
    {
        const int result = Base::sync();
        note(result != 0);
        return result;
    }

private:
    void note(bool isFailure)
    {
        if (isFailure && mFailure == 0)
            mFailure = errno != 0 ? errno : EIO;
    }

    int mFailure = 0;
};

/// Opens a file that is used in place and locks it. If another file took its name while we waited for the
/// lock, tries again with that file.
host::FileHandle openLocked(const std::string& path, bool append)
{
    const host::Deadline deadline = std::chrono::steady_clock::now() + host::kLockWait;
    do {
        const auto status = host::fileStatus(path);
        if (append && status && (!S_ISREG(status->st_mode) || !host::mayWrite(path, *status))) {
            errno = S_ISDIR(status->st_mode) ? EISDIR : EACCES;
            return {};
        }
        host::FileHandle file =
            append ? host::openFile(path, O_WRONLY | O_APPEND | O_CREAT, 0666) : host::openRegularFile(path);
        if (!file || !host::mayUse(host::waitForLock(file.get(), append ? LOCK_EX : LOCK_SH, deadline)))
            return {};
        if (host::namesFile(path, file.get()))
            return file;
    } while (std::chrono::steady_clock::now() < deadline);
    return {};
}

} // namespace

class Q_DECL_HIDDEN LockingFStream::Private
{
public:
    Private(const std::string& path, std::ios_base::openmode mode);

    bool close(bool streamIsGood);

    CheckedBuffer buffer;

private:
    void use(host::FileHandle file, std::ios_base::openmode mode);
    bool finishBuffer();

    std::unique_ptr<host::ReplacementFile> mReplacement;
};

LockingFStream::Private::Private(const std::string& path, std::ios_base::openmode mode)
{
    const bool isAppended = (mode & std::ios_base::app) != 0;
    if (isAppended) {
        use(openLocked(path, true), std::ios_base::out | std::ios_base::app);
    } else if (mode & std::ios_base::out) {
        mReplacement = host::ReplacementFile::open(path, host::ReplacementFile::Mode::Locked);
        if (mReplacement)
            use(host::FileHandle(fcntl(mReplacement->descriptor(), F_DUPFD_CLOEXEC, 0)), std::ios_base::out);
    } else {
        use(openLocked(path, false), std::ios_base::in);
    }
}

void LockingFStream::Private::use(host::FileHandle file, std::ios_base::openmode mode)
{
    if (file)
        buffer = CheckedBuffer(file.release(), mode | std::ios_base::binary);
}

/// Writes the remaining bytes and closes the buffer's file.
bool LockingFStream::Private::finishBuffer()
{
    buffer.pubsync();
    const bool isClosed = buffer.close() != nullptr;
    if (buffer.failure() != 0)
        errno = buffer.failure();
    return isClosed && buffer.failure() == 0;
}

bool LockingFStream::Private::close(bool streamIsGood)
{
    const auto replacement = std::move(mReplacement);
    if (!buffer.is_open() || !finishBuffer())
        return false;
    return !replacement || (streamIsGood && replacement->commit());
}

LockingFStream::LockingFStream(const fileString& path, std::ios_base::openmode mode)
    : std::iostream(nullptr), mPrivate(new Private(path.toNativeString(), mode))
{
    const int reason = errno;
    rdbuf(&mPrivate->buffer);
    imbue(std::locale::classic());
    errno = reason;
    if (!is_open())
        setstate(std::ios_base::failbit);
}

LockingFStream::~LockingFStream() = default;

bool LockingFStream::is_open() const
{
    return mPrivate->buffer.is_open();
}

void LockingFStream::close()
{
    if (!mPrivate->close(!fail()))
        setstate(std::ios_base::failbit);
}
