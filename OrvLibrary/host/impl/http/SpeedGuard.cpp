#include "OrvLibrary/host/impl/http/SpeedGuard_p.h"

SpeedGuard::SpeedGuard(const HttpLimits& limits, TimePoint start) : mLimits(limits), mSamples{{start, 0}} {}

bool SpeedGuard::tooSlow(TimePoint now)
{
    if (now - mSamples.back().time >= mLimits.slowTime / 30)
        mSamples.push_back({now, mReceived});
    while (mSamples.size() > 1 && now - mSamples[1].time >= mLimits.slowTime)
        mSamples.pop_front();
    const Sample& oldest = mSamples.front();
    if (now - oldest.time < mLimits.slowTime)
        return false;
    const std::chrono::duration<double> stretch = now - oldest.time;
    return static_cast<double>(mReceived - oldest.received) <
           stretch.count() * static_cast<double>(mLimits.lowestSpeed);
}
