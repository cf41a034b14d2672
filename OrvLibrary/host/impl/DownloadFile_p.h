#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

#include "OrvLibrary/host/fileString.h"
#include "OrvLibrary/host/impl/ReplacementFile_p.h"

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
    bool write(const char* data, std::size_t size, std::string& reason);
    /// Lets the disk begin with what was written and not written back yet.
    void startWriteBack();
    /// Syncs the file and gives it the target's name.
    bool commit(std::string& reason);

    /// Bytes free on the target's disk; -1 when that cannot be told.
    std::int64_t freeBytes() const;
    std::int64_t size() const { return mSize; }

private:
    void writeBackEarly();

    const fileString mTarget;
    /// Null before it is opened. Abandoned, and so removed, when it was not committed.
    std::unique_ptr<host::ReplacementFile> mFile;
    std::int64_t mSize = 0;
    /// How much the system was already asked to write back.
    std::int64_t mWrittenBack = 0;
};
