#include "OrvHost/health/DatabaseCheck.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <condition_variable>
#include <cstdint>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <memory>
#include <mutex>
#include <thread>

#include <sqlite3.h>

namespace OrvHost {

namespace {

using Clock = std::chrono::steady_clock;

constexpr std::size_t kHeaderSize = 100;
constexpr char kMagic[] = "SQLite format 3"; // 16 bytes, with the zero at its end

const char* const kNoDatabase = "is no database";
const std::string kDamaged = "is a damaged database: ";
const std::string kUnreadable = "cannot be read: ";

using Header = std::array<unsigned char, kHeaderSize>;

std::uint64_t bigEndian(const Header& header, std::size_t offset, std::size_t bytes)
{
    std::uint64_t value = 0;
    for (std::size_t index = 0; index < bytes; ++index)
        value = value << 8 | header[offset + index];
    return value;
}

/// A power of two is its own lowest bit. The header has no room for a size over 65536.
bool isPageSize(std::uint64_t size)
{
    return size >= 512 && (size & -size) == size;
}

/// The problem that the header shows. It has the number of pages, but that is right only if the last program
/// to write the file updated it.
std::string problemOfHeader(const fileString& file)
{
    constexpr std::size_t kPageSize = 16, kChangeCounter = 24, kPages = 28, kPagesValidFor = 92;
    Header header{};
    errno = 0;
    std::ifstream stream(file.toNativeString(), std::ios::binary);
    stream.read(reinterpret_cast<char*>(header.data()), kHeaderSize);
    if (!stream && errno != 0)
        return kUnreadable + std::strerror(errno);
    if (!stream || std::memcmp(header.data(), kMagic, sizeof kMagic) != 0)
        return kNoDatabase;
    const std::uint64_t stored = bigEndian(header, kPageSize, 2);
    const std::uint64_t pageSize = stored == 1 ? 65536 : stored;
    if (!isPageSize(pageSize))
        return kNoDatabase;
    std::error_code error;
    const std::uintmax_t size = std::filesystem::file_size(file.toNativeString(), error);
    const bool isCounted = bigEndian(header, kChangeCounter, 4) == bigEndian(header, kPagesValidFor, 4);
    if (!error && isCounted && bigEndian(header, kPages, 4) * pageSize > size)
        return kDamaged + "it is cut off";
    return {};
}

/// Every byte of the path is encoded, so none of them has a meaning in the address.
std::string uriOf(const fileString& file)
{
    const char* const hexadecimal = "0123456789ABCDEF";
    std::string uri = "file:";
    for (const char character : std::filesystem::absolute(file.toNativeString()).string()) {
        const auto byte = static_cast<unsigned char>(character);
        uri += '%';
        uri += hexadecimal[byte >> 4];
        uri += hexadecimal[byte & 15];
    }
    return uri + "?mode=ro&immutable=1";
}

struct Closer
{
    void operator()(sqlite3* database) const { sqlite3_close(database); }
    void operator()(sqlite3_stmt* statement) const { sqlite3_finalize(statement); }
};
using Database = std::unique_ptr<sqlite3, Closer>;
using Statement = std::unique_ptr<sqlite3_stmt, Closer>;

/// Interrupts the check of a database after its time limit or after a cancel. The database library calls its
/// own progress function only between tables, so it could not stop the check of one large table.
class Watch
{
public:
    Watch(sqlite3* database, std::chrono::milliseconds limit, const std::function<bool()>& isCancelled)
        : mIsCancelled(isCancelled), mThread([this, database, limit] { run(database, limit); })
    {
    }

    ~Watch()
    {
        {
            const std::lock_guard<std::mutex> lock(mMutex);
            mIsEnded = true;
        }
        mChanged.notify_one();
        mThread.join();
    }

    Watch(const Watch&) = delete;
    Watch& operator=(const Watch&) = delete;

private:
    /// An interrupt has no effect before the check has begun, so it is repeated until the end.
    void run(sqlite3* database, std::chrono::milliseconds limit)
    {
        const Clock::time_point deadline = Clock::now() + limit;
        std::unique_lock<std::mutex> lock(mMutex);
        while (!mIsEnded) {
            if (Clock::now() >= deadline || (mIsCancelled && mIsCancelled()))
                sqlite3_interrupt(database);
            mChanged.wait_for(lock, std::min(limit, kPause));
        }
    }

    static constexpr std::chrono::milliseconds kPause{20};

    std::function<bool()> mIsCancelled;

    std::mutex mMutex;
    std::condition_variable mChanged;
    bool mIsEnded = false; ///< guarded by mMutex
    std::thread mThread;   ///< last, because the thread uses the others
};

/// The last line of the result. A heading with the database's name comes before it.
std::string lastLine(const std::string& text)
{
    return text.substr(text.rfind('\n') + 1); // without a line break, the whole text
}

/// The problem for a result of the database library. If the library cannot judge the file, for example
/// because of an unknown sort order, there is no problem.
std::string problemOfResult(sqlite3* database, int result)
{
    switch (result & 0xff) {
    case SQLITE_NOTADB:
        return kNoDatabase;
    case SQLITE_CORRUPT:
        return kDamaged + sqlite3_errmsg(database);
    case SQLITE_IOERR:
    case SQLITE_CANTOPEN:
        return kUnreadable + sqlite3_errmsg(database);
    default:
        return {};
    }
}

std::string problemOfContents(const fileString& file, std::chrono::milliseconds limit,
                              const std::function<bool()>& isCancelled)
{
    sqlite3* opened = nullptr;
    const int flags = SQLITE_OPEN_READONLY | SQLITE_OPEN_URI | SQLITE_OPEN_NOMUTEX;
    int result = sqlite3_open_v2(uriOf(file).c_str(), &opened, flags, nullptr);
    const Database database(opened);
    if (result != SQLITE_OK)
        return problemOfResult(database.get(), result);
    sqlite3_stmt* prepared = nullptr;
    result = sqlite3_prepare_v2(database.get(), "PRAGMA quick_check(1)", -1, &prepared, nullptr);
    const Statement statement(prepared);
    if (result != SQLITE_OK)
        return problemOfResult(database.get(), result);
    const Watch watch(database.get(), limit, isCancelled);
    result = sqlite3_step(statement.get());
    if (result != SQLITE_ROW)
        return problemOfResult(database.get(), result);
    const auto* const column = reinterpret_cast<const char*>(sqlite3_column_text(statement.get(), 0));
    const std::string text = column ? column : "";
    return text == "ok" ? std::string() : kDamaged + lastLine(text);
}

} // namespace

std::string DatabaseCheck::problemOf(const fileString& file, std::chrono::milliseconds limit,
                                     const std::function<bool()>& isCancelled)
{
    const std::string problem = problemOfHeader(file);
    return problem.empty() && limit.count() > 0 ? problemOfContents(file, limit, isCancelled) : problem;
}

} // namespace OrvHost
