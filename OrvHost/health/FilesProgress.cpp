#include "OrvHost/health/FilesProgress_p.h"

#include <algorithm>

#include "OrvLibrary/host/ZipUtils.h"

namespace OrvHost {

FilesProgress::FilesProgress(std::shared_ptr<ProgressSubject> whole, std::uint64_t bytes)
    : mWhole(std::move(whole))
{
    constexpr std::uint64_t kWorthShowing = 8U << 20U; // less is done before it could be read
    if (!mWhole || bytes < kWorthShowing)
        return;
    mWhole->updateLabels("checking", {});
    mWhole->createSubProgress(bytes);
}

void FilesProgress::begin(const std::string& name, std::uint64_t bytes)
{
    if (checkCancel(false))
        throw ZipUtils::Cancelled();
    mSize = bytes;
    mTold = 0;
    if (mWhole)
        mWhole->increment(name, {});
}

void FilesProgress::end()
{
    tellUpTo(mSize);
}

bool FilesProgress::checkCancel(bool processEvents)
{
    return mWhole && mWhole->checkCancel(processEvents);
}

void FilesProgress::createSubProgress(std::uint64_t total)
{
    mTotal = total;
    mDone = 0;
}

void FilesProgress::increment(const marl::unicode::String&, const marl::unicode::String&) {}

void FilesProgress::updateLabels(const marl::unicode::String&, const marl::unicode::String&) {}

void FilesProgress::advanceBytes(std::uint64_t bytes)
{
    mDone = std::min(mDone + bytes, mTotal);
    if (mTotal != 0)
        tellUpTo(static_cast<std::uint64_t>(static_cast<double>(mDone) / static_cast<double>(mTotal) *
                                            static_cast<double>(mSize)));
}

void FilesProgress::tellUpTo(std::uint64_t bytes)
{
    constexpr std::uint64_t kMost = 8U << 20U;
    while (mTold < std::min(bytes, mSize)) {
        const std::uint64_t portion = std::min(std::min(bytes, mSize) - mTold, kMost);
        mTold += portion;
        if (mWhole)
            mWhole->advanceBytes(portion);
    }
}

} // namespace OrvHost
