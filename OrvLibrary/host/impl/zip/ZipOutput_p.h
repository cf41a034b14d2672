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

/// A new file that is written beside `target` and takes its name in one rename at the end. Until then the
/// target is untouched, and a file that is given up leaves nothing behind. The target is locked against other
/// writers meanwhile.
class ZipOutput
{
public:
    /// @param target need not exist; when it does, its permissions are taken over
    /// @param patience how long another writer is waited for
    /// @throws std::runtime_error with the path and the system's text; Cancelled
    ZipOutput(const fileString& target, ZipPatience& patience, ZipMeter& meter,
              host::ReplacementFile::Mode mode = host::ReplacementFile::Mode::Locked);

    /// Where the next byte goes.
    std::uint64_t position() const { return mPosition + mPending.size(); }
    void append(std::string_view bytes);
    /// Appends bytes of another file, without reading them into this process where the system can. The meter
    /// is told of every 8 MB.
    /// @param source for the reason when reading fails
    /// @throws std::runtime_error, Cancelled
    void appendRange(int file, std::uint64_t offset, std::uint64_t size, const fileString& source);
    /// Everything appended is in the file afterwards.
    void flush();
    /// Gives the file the target's name. It is not synced, on purpose, like the work of any copying program;
    /// waiting for the disk would take as long as all the rest.
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
    bool mReplaces = false;         ///< the target exists
    std::uint64_t mPosition = 0;    ///< bytes in the file
    std::uint64_t mWrittenBack = 0; ///< bytes that the disk was told of
    std::string mPending;           ///< bytes not yet in the file
};

} // namespace ZipUtils
