#pragma once

#include <cstdint>
#include <string>

namespace host {

/// Space of a disk in bytes.
struct DiskSpace
{
    std::int64_t free = -1; ///< -1 if unknown
    std::int64_t whole = -1;
};

/// Free space that a new file must leave on its disk.
struct SpareSpace
{
    /// In bytes; or one `share`th of the disk if that is less.
    std::int64_t bytes = 256LL * 1024 * 1024;
    std::int64_t share = 20;
    /// Further free space for other files that are written at the same time.
    std::int64_t forOthers = 0;
};

/// How large a file may become.
class SizeLimit
{
public:
    /// Allows nothing.
    SizeLimit() = default;
    /// @param most the limit if the disk has space enough
    /// @param size the bytes that the file has already
    SizeLimit(std::int64_t most, std::int64_t size, const DiskSpace& disk, const SpareSpace& spare);

    bool allows(std::int64_t size) const { return size <= mMost; }
    /// Whether the disk's space sets the limit.
    bool isFromDisk() const { return mIsFromDisk; }
    /// Why the file may not grow by `bytes`: "file too large", or the space that is needed and free.
    std::string reason(std::int64_t bytes) const;

private:
    std::int64_t mMost = 0;
    bool mIsFromDisk = false;
    std::int64_t mFree = 0;
    std::int64_t mKept = 0;
};

} // namespace host
