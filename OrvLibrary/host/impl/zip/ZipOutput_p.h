#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "OrvLibrary/host/fileString.h"
#include "OrvLibrary/host/impl/files/ReplacementFile_p.h"
#include "OrvLibrary/host/impl/zip/ZipMeter_p.h"
#include "OrvLibrary/host/impl/zip/ZipPatience_p.h"

namespace ZipUtils {

/// A new file that is written beside `target` and renamed to it at the end. Until then the target is
/// unchanged, but locked against other writers. If the object is destroyed early, nothing is left behind.
class ZipOutput
{
public:
    /// @param target may be missing; if it exists, the new file takes its permissions
    /// @param patience how long to wait for another writer
    /// @throws std::runtime_error with the path and the system's message; Cancelled
    ZipOutput(const fileString& target, ZipPatience& patience, ZipMeter& meter,
              host::ReplacementFile::Mode mode = host::ReplacementFile::Mode::Locked);

    /// The position of the next byte.
    std::uint64_t position() const { return mPosition + mPending.size(); }
    void append(std::string_view bytes);
    /// Appends bytes of another file. If the system can copy them itself, they do not pass through this
    /// process. The meter counts every 8 MB.
    /// @param source its path, for error messages
    /// @throws std::runtime_error, Cancelled
    void appendRange(int file, std::uint64_t offset, std::uint64_t size, const fileString& source);
    /// Writes everything appended so far to the file.
    void flush();
    /// Renames the file to the target. On purpose without a sync, as file copying programs do: waiting for
    /// the disk would take as long as all the rest.
    void publish();

private:
    std::uint64_t copyInKernel(int file, std::uint64_t offset, std::uint64_t size);
    void copyThroughMemory(int file, std::uint64_t offset, std::uint64_t size, const fileString& source);
    void appendSmall(int file, std::uint64_t offset, std::size_t size, const fileString& source);
    void write(const char* bytes, std::size_t size);
    void advance(std::uint64_t written);
    [[noreturn]] void fail() const;

    fileString mTarget;
    ZipMeter& mMeter;
    std::unique_ptr<host::ReplacementFile> mFile;
    bool mReplaces = false;         ///< whether the target existed
    std::uint64_t mPosition = 0;    ///< bytes in the file
    std::uint64_t mWrittenBack = 0; ///< bytes for which writing to the disk has begun
    std::string mPending;           ///< bytes not yet in the file
};

} // namespace ZipUtils
