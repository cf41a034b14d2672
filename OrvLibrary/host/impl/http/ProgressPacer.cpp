#include "OrvLibrary/host/impl/http/ProgressPacer_p.h"

#include <algorithm>

ProgressPacer::ProgressPacer(const HttpLimits& limits, Curl::ProgressFunction progress, void* context,
                             TimePoint start)
    : mLimits(limits)
{
    attach(progress, context, start);
}

bool ProgressPacer::call(std::int64_t count, TimePoint now)
{
    if (mAborted || !mProgress)
        return !mAborted;
    mTold = count;
    mLastCall = now;
    mAborted = mProgress(mContext, static_cast<double>(mTotal), static_cast<double>(count), 0, 0) != 0;
    return !mAborted;
}

bool ProgressPacer::received(std::int64_t bytes, TimePoint now)
{
    const std::int64_t before = mReceived;
    mReceived += bytes;
    mNextCall = now + mLimits.progressSilence;
    return callForSteps(before, now);
}

bool ProgressPacer::callForSteps(std::int64_t from, TimePoint now)
{
    const std::int64_t step = mLimits.progressStep;
    for (std::int64_t mark = (from / step + 1) * step; mark <= mReceived && !mAborted; mark += step)
        call(mark, now);
    return !mAborted;
}

bool ProgressPacer::attach(Curl::ProgressFunction progress, void* context, TimePoint now)
{
    mProgress = progress;
    mContext = context;
    mLastCall = now;
    mNextCall = now + mLimits.progressSilence;
    return callForSteps(0, now);
}

bool ProgressPacer::tick(TimePoint now)
{
    // If bytes trickle in so slowly that a step takes more than a second, call anyway: a cancel must be
    // noticed.
    const bool isTrickle = now - mLastCall >= mLimits.progressSilence;
    const bool isSilence = now >= mNextCall;
    if (isSilence)
        mNextCall = std::max(mNextCall + mLimits.progressInterval, now);
    return isTrickle || isSilence ? call(mReceived, now) : !mAborted;
}

bool ProgressPacer::callAtEnd(TimePoint now)
{
    return mTold == mReceived ? !mAborted : call(mReceived, now);
}
