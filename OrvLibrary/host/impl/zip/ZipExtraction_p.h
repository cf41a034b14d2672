#pragma once

#include <atomic>
#include <exception>
#include <functional>
#include <memory>
#include <thread>

#include "OrvLibrary/host/impl/zip/ZipArchive_p.h"
#include "OrvLibrary/host/impl/zip/ZipPatience_p.h"

namespace ZipUtils {

/// Extracts a member to a file. A member over 8 MB gets its own thread, so the walk can go on meanwhile. Up
/// to 256 MB, it is inflated in one piece directly into the mapped file, twice as fast as in several pieces.
/// A cancel takes effect within a megabyte, or in the one-piece case when the whole member is inflated. Used
/// by one thread.
class ZipExtraction
{
public:
    /// @return null if the target exists and is read-only, or another writer has locked it
    /// @throws std::ios_base::failure if it cannot be written for another reason; Cancelled
    static std::unique_ptr<ZipExtraction> begin(const fileString& target, ZipPatience& patience,
                                                ZipMeter& meter);
    /// Leaves the target unchanged, unless `publish` was called.
    ~ZipExtraction();
    ZipExtraction(const ZipExtraction&) = delete;
    ZipExtraction& operator=(const ZipExtraction&) = delete;

    /// Begins to extract a member and replaces the member extracted before. Counts its bytes as content in
    /// the meter.
    /// @throws std::runtime_error, Cancelled
    void extract(std::shared_ptr<const ZipArchive> source, const ZipEntry& entry);
    /// The bytes still to extract.
    std::uint64_t waiting() const { return size() - mDone; }
    /// The size of the whole file.
    std::uint64_t size() const;
    /// Waits until the member is extracted.
    /// @throws std::runtime_error if the member is damaged; std::ios_base::failure if the file cannot be
    /// written; Cancelled
    void finish();
    /// Writes the file to the disk, portion by portion.
    /// @throws std::ios_base::failure, Cancelled
    void sync();
    /// Gives the file its name. Its content is on the disk by then.
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
    std::uint64_t mTold = 0; ///< bytes of this member that the meter knows of
    std::thread mThread;
    std::exception_ptr mFailure; ///< set by the thread; read after it has ended
    std::atomic<std::uint64_t> mDone{0};
    std::atomic<bool> mHasEnded{true};
    std::atomic<bool> mIsStopped{false};
};

} // namespace ZipUtils
