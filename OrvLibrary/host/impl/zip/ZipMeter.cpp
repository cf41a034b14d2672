#include "OrvLibrary/host/impl/zip/ZipMeter_p.h"

#include <algorithm>

#include "OrvLibrary/host/StringUtils.h"
#include "OrvLibrary/host/ZipUtils.h"

namespace ZipUtils {

Cancelled::Cancelled() : std::runtime_error("cancelled") {}

Cancelled::~Cancelled() = default;

ZipMeter::ZipMeter(std::shared_ptr<ProgressSubject> subject) : mSubject(std::move(subject)) {}

void ZipMeter::addContent(std::uint64_t bytes)
{
    mUntold += bytes;
    if (mUntold >= kPortion)
        tellAll();
    addWork(bytes);
}

void ZipMeter::addWork(std::uint64_t bytes)
{
    mUnasked += bytes;
    if (mUnasked >= kPortion)
        ask();
}

void ZipMeter::waited(std::chrono::milliseconds time)
{
    constexpr std::chrono::milliseconds kUnasked(50);
    mWaited += time;
    if (mWaited >= kUnasked)
        ask();
}

void ZipMeter::ask()
{
    mUnasked = 0;
    mWaited = std::chrono::milliseconds(0);
    if (mSubject && mSubject->checkCancel(false))
        throw Cancelled();
}

void ZipMeter::tellAll()
{
    while (mUntold > 0) {
        const std::uint64_t bytes = std::min(mUntold, kPortion);
        mUntold -= bytes;
        if (mSubject)
            mSubject->advanceBytes(bytes);
    }
}

void ZipMeter::label(const char* step, std::uint64_t bytes)
{
    if (mSubject && bytes >= kPortion)
        mSubject->updateLabels(xl8(step), {});
}

} // namespace ZipUtils
