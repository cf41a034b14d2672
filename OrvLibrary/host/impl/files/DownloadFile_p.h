#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>

#include "OrvLibrary/host/fileString.h"
#include "OrvLibrary/host/impl/files/FileHandle_p.h"
#include "OrvLibrary/host/impl/files/ReplacementFile_p.h"
#include "OrvLibrary/host/impl/files/SizeLimit_p.h"

namespace host {

/// A file that gets its target's name only when it is complete. Until then the target is unchanged, and it
/// stays unchanged if the download fails. There are two ways to write:
/// - Without a partial path, the bytes go to a private file in the target's folder. It is removed after a
///   failure.
/// - With a partial path, the bytes go to that file. It stays after a failure, so that a later download can
///   continue it.
///
/// Failures give a reason such as "write error: No space left on device".
class DownloadFile
{
public:
    /// @param partial path of the partial file; empty for a private file beside the target
    explicit DownloadFile(const fileString& target, const fileString& partial = {})
        : mTarget(target), mPartial(partial)
    {
    }
    ~DownloadFile();
    DownloadFile(const DownloadFile&) = delete;
    DownloadFile& operator=(const DownloadFile&) = delete;

    /// Opens and locks the partial file, and continues at its end; `size` then tells how many bytes it has.
    /// Does nothing without a partial path or if the file does not exist.
    bool resume(std::string& reason);
    /// Opens the file and empties it.
    bool open(std::string& reason);
    bool isOpen() const { return descriptor() >= 0; }
    /// Passes the file's bytes to `take`, piece by piece, until `take` returns false.
    bool read(const std::function<bool(const char*, std::size_t)>& take, std::string& reason);
    /// Takes bytes, and writes them in larger pieces. So an error may come from bytes of an earlier call.
    bool write(const char* data, std::size_t size, std::string& reason);
    /// Frees memory and lets the disk begin to write. For a file that waits for its call.
    void restAtEnd();
    /// Syncs the file and gives it the target's name. After a power failure the old target may be back, but
    /// never a part of the new file.
    bool commit(std::string& reason);

    /// Removes the partial file, because its bytes are wrong.
    void discard();

    /// How large the file may become, at most `most` bytes, so that `spare` stays free on its disk.
    SizeLimit limit(std::int64_t most, const SpareSpace& spare) const;
    /// Bytes taken so far, with those the partial file had.
    std::int64_t size() const { return mSize; }

private:
    int descriptor() const { return mFile ? mFile->descriptor() : mPartialFile.get(); }
    bool openPartial(int flags, std::string& reason);
    bool nameTarget();
    bool flush(std::string& reason);
    void startWriteBack();

    const fileString mTarget;
    const fileString mPartial;
    /// The private file; null if it is not open. Its destructor removes the file unless `commit` has renamed
    /// it.
    std::unique_ptr<ReplacementFile> mFile;
    /// The partial file.
    FileHandle mPartialFile;
    std::int64_t mSize = 0;
    std::string mGathered;
    std::int64_t mWritten = 0;
    /// The system was already asked to write the bytes before this one to the disk.
    std::int64_t mWrittenBack = 0;
};

} // namespace host
