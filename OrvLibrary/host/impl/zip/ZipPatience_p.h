#pragma once

#include <chrono>
#include <memory>

#include "OrvLibrary/host/fileString.h"
#include "OrvLibrary/host/impl/files/ReplacementFile_p.h"
#include "OrvLibrary/host/impl/zip/ZipMeter_p.h"

namespace ZipUtils {

/// How long other writers are still waited for: 5 s in all for everything that one batch begins. A cancel is
/// heard meanwhile.
class ZipPatience
{
public:
    explicit ZipPatience(ZipMeter& meter) : mMeter(meter) {}

    /// Opens a file beside `target` that is to take its place.
    /// @return null on failure, with the reason in `errno`
    /// @throws Cancelled
    std::unique_ptr<host::ReplacementFile>
    open(const fileString& target, host::ReplacementFile::Mode mode = host::ReplacementFile::Mode::Locked);

private:
    ZipMeter& mMeter;
    std::chrono::milliseconds mLeft = host::kLockWait;
};

} // namespace ZipUtils
