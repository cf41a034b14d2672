#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

#include "OrvLibrary/host/fileString.h"
#include "OrvLibrary/host/impl/files/ReplacementFile_p.h"

/// A file that is written privately in its target's folder and takes the target's name when it is whole.
/// Until then, and for ever after a failure, the target is as it was.
///
/// Failures give a reason of the form "write error: No space left on device".
class DownloadFile
{
public:
    explicit DownloadFile(const fileString& target) : mTarget(target) {}

    bool open(std::string& reason);
    bool isOpen() const { return mFile != nullptr; }
    /// Takes bytes, which reach the file in larger pieces; so a failure may be of those taken before.
    bool write(const char* data, std::size_t size, std::string& reason);
    /// No more will be written for now: lets go of memory, and lets the disk begin with what it has not got.
    void restAtEnd();
    /// Syncs the file and gives it the target's name. A loss of power soon after may bring back the old
    /// target, never a part of the file.
    bool commit(std::string& reason);

    /// Bytes free on the target's disk; -1 when that cannot be told.
    std::int64_t freeBytes() const;
    /// Bytes taken.
    std::int64_t size() const { return mSize; }

private:
    bool flush(std::string& reason);
    void startWriteBack();

    const fileString mTarget;
    /// Null before it is opened. Abandoned, and so removed, when it was not committed.
    std::unique_ptr<host::ReplacementFile> mFile;
    std::int64_t mSize = 0;
    std::string mGathered;
    std::int64_t mWritten = 0;
    /// How much the system was already asked to write back.
    std::int64_t mWrittenBack = 0;
};
