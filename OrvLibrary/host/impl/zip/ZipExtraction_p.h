#pragma once

#include <atomic>
#include <exception>
#include <functional>
#include <memory>
#include <thread>

#include "OrvLibrary/host/impl/zip/ZipArchive_p.h"
#include "OrvLibrary/host/impl/zip/ZipPatience_p.h"

namespace ZipUtils {

/// A member that becomes a file. A member over 8 MB is extracted on a thread of its own, while the walk
/// goes on; up to 256 MB whole, straight into the mapped file, which is twice as fast as the way in pieces. A
/// stop is heard after a megabyte, or when the whole member is inflated. Used by one thread.
class ZipExtraction
{
public:
    /// @return null when the target exists and is read-only or locked by another writer
    /// @throws std::ios_base::failure when it cannot be written for another reason; Cancelled
    static std::unique_ptr<ZipExtraction> begin(const fileString& target, ZipPatience& patience,
                                                ZipMeter& meter);
    /// Leaves the target as it was, unless it was published.
    ~ZipExtraction();
    ZipExtraction(const ZipExtraction&) = delete;
    ZipExtraction& operator=(const ZipExtraction&) = delete;

    /// Begins to extract a member, in place of what was extracted before. Its size is told as content as it
    /// is done.
    /// @throws std::runtime_error, Cancelled
    void extract(std::shared_ptr<const ZipArchive> source, const ZipEntry& entry);
    /// Bytes of content that are still to come.
    std::uint64_t waiting() const { return size() - mDone; }
    /// Bytes of the whole file.
    std::uint64_t size() const;
    /// Waits for the end of the work.
    /// @throws std::runtime_error for a member that is not sound; std::ios_base::failure when the file cannot
    /// be written; Cancelled
    void finish();
    /// Hands the file to the disk, portion by portion.
    /// @throws std::ios_base::failure, Cancelled
    void sync();
    /// Gives the file its place; it is on the disk then.
    /// @throws std::ios_base::failure
    void publish();

private:
    using Piece = std::function<void(std::uint64_t bytes)>;

    ZipExtraction(const fileString& target, std::unique_ptr<host::ReplacementFile> file, ZipMeter& meter);

    void workOnThread() noexcept;
    void work(const Piece& onPiece);
    void extractSmall(const Piece& onPiece);
    bool extractMapped(const Piece& onPiece);
    void extractInPieces(const Piece& onPiece);
    void write(const unsigned char* bytes, std::size_t size, std::uint64_t offset);
    void tell();
    void join();
    [[noreturn]] void fail() const;

    fileString mTarget;
    std::unique_ptr<host::ReplacementFile> mFile;
    ZipMeter& mMeter;
    std::shared_ptr<const ZipArchive> mSource; ///< null before the first member
    const ZipEntry* mEntry = nullptr;
    std::uint64_t mTold = 0; ///< bytes of content of this member
    std::thread mThread;
    std::exception_ptr mFailure; ///< of the thread; read when it has ended
    std::atomic<std::uint64_t> mDone{0};
    std::atomic<bool> mHasEnded{true};
    std::atomic<bool> mIsStopped{false};
};

} // namespace ZipUtils
