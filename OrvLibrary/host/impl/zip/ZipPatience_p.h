#pragma once

#include <chrono>
#include <memory>

#include "OrvLibrary/host/fileString.h"
#include "OrvLibrary/host/impl/files/ReplacementFile_p.h"
#include "OrvLibrary/host/impl/zip/ZipMeter_p.h"

namespace ZipUtils {

/// Limits the time spent waiting for other writers: 5 s for all files of a batch together. A cancel ends the
/// waiting.
class ZipPatience
{
public:
    explicit ZipPatience(ZipMeter& meter) : mMeter(meter) {}

    /// Opens a file beside `target` that will replace it.
    /// @return null on failure; `errno` has the reason
    /// @throws Cancelled
    std::unique_ptr<host::ReplacementFile>
    open(const fileString& target, host::ReplacementFile::Mode mode = host::ReplacementFile::Mode::Locked);

private:
    ZipMeter& mMeter;
    std::chrono::milliseconds mLeft = host::kLockWait;
};

} // namespace ZipUtils
