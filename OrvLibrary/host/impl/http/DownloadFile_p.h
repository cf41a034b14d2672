#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>

#include "OrvLibrary/host/fileString.h"
#include "OrvLibrary/host/impl/files/FileHandle_p.h"
#include "OrvLibrary/host/impl/files/ReplacementFile_p.h"

/// A file that takes its target's name when it is whole. Until then, and for ever after a failure, the target
/// is as it was. The file is written privately in the target's folder, and removed after a failure; or, when
/// there is a path for a partial file, it grows there, and stays there after a failure.
///
/// Failures give a reason of the form "write error: No space left on device".
class DownloadFile
{
public:
    /// @param partial where the file grows; empty for a private file beside the target
    explicit DownloadFile(const fileString& target, const fileString& partial = {})
        : mTarget(target), mPartial(partial)
    {
    }
    ~DownloadFile();
    DownloadFile(const DownloadFile&) = delete;
    DownloadFile& operator=(const DownloadFile&) = delete;

    /// Locks the partial file, and goes on at its end: `size` tells how much there is. Without a partial file
    /// there is nothing.
    bool resume(std::string& reason);
    /// Opens the file, empty.
    bool open(std::string& reason);
    bool isOpen() const { return descriptor() >= 0; }
    /// Hands out what the file holds, in pieces, until `take` returns false.
    bool read(const std::function<bool(const char*, std::size_t)>& take, std::string& reason);
    /// Takes bytes and writes them in larger pieces. So a failure may concern bytes that were taken before.
    bool write(const char* data, std::size_t size, std::string& reason);
    /// Releases memory and lets the disk begin to write. For a file that gets no more bytes for a while.
    void restAtEnd();
    /// Syncs the file and gives it the target's name. A loss of power soon after may bring back the old
    /// target, never a part of the file.
    bool commit(std::string& reason);

    /// Removes the partial file because its bytes are wrong.
    void discard();

    /// Of the file's disk, in bytes; -1 when that cannot be told.
    struct Room
    {
        std::int64_t free = -1;
        std::int64_t whole = -1;
    };
    Room room() const;
    /// Bytes taken.
    std::int64_t size() const { return mSize; }

private:
    int descriptor() const { return mFile ? mFile->descriptor() : mGrowing.get(); }
    bool openPartial(int flags, std::string& reason);
    bool nameTarget();
    bool flush(std::string& reason);
    void startWriteBack();

    const fileString mTarget;
    const fileString mPartial;
    /// The private file; null before it is opened. Abandoned, and so removed, when it was not committed.
    std::unique_ptr<host::ReplacementFile> mFile;
    /// The partial file.
    host::FileHandle mGrowing;
    std::int64_t mSize = 0;
    std::string mGathered;
    std::int64_t mWritten = 0;
    /// How much the system was already asked to write back.
    std::int64_t mWrittenBack = 0;
};
