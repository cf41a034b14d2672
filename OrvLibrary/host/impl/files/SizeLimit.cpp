#include "OrvLibrary/host/impl/files/SizeLimit_p.h"

#include <algorithm>
#include <iterator>

namespace host {

namespace {

/// A size for a message, such as "12 MB". Rounds up; units are powers of 1000.
std::string sizeText(std::int64_t bytes)
{
    const char* const units[] = {" bytes", " KB", " MB", " GB", " TB"};
    std::size_t unit = 0;
    for (; bytes >= 1000 && unit + 1 < std::size(units); ++unit)
        bytes = (bytes + 999) / 1000;
    return std::to_string(bytes) + units[unit];
}

} // namespace

SizeLimit::SizeLimit(std::int64_t most, std::int64_t size, const DiskSpace& disk, const SpareSpace& spare)
    : mMost(most), mFree(disk.free), mKept(std::min(spare.bytes, disk.whole / spare.share) + spare.forOthers)
{
    const std::int64_t fits = std::max<std::int64_t>(size + mFree - mKept, 0);
    mIsFromDisk = mFree >= 0 && fits < most;
    if (mIsFromDisk)
        mMost = fits;
}

std::string SizeLimit::reason(std::int64_t bytes) const
{
    if (!mIsFromDisk)
        return "file too large";
    return "disk full: " + sizeText(bytes) + " needed, " + sizeText(mFree) + " free, " + sizeText(mKept) +
           " kept free";
}

} // namespace host
