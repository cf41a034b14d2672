#include "apps/orv-browser/activities/TransferSpeed.h"

#include <algorithm>

#include "apps/orv-browser/models/DataSize.h"

namespace {

constexpr qint64 kWindow = 5000;          // milliseconds over which the speed is measured
constexpr qint64 kLeast = 500;            // milliseconds before a speed is shown
constexpr double kSecondsInMinutes = 100; // longer times are shown in minutes
constexpr double kMostSecondsLeft = 1e6;

} // namespace

void TransferSpeed::note(qint64 milliseconds, qint64 bytes)
{
    mSamples.push_back({milliseconds, bytes});
    while (mSamples.size() > 2 && mSamples[1].milliseconds <= milliseconds - kWindow)
        mSamples.pop_front();
}

double TransferSpeed::bytesPerSecond() const
{
    if (mSamples.size() < 2)
        return 0;
    const qint64 time = mSamples.back().milliseconds - mSamples.front().milliseconds;
    const qint64 bytes = mSamples.back().bytes - mSamples.front().bytes;
    return time <= 0 ? 0 : static_cast<double>(std::max<qint64>(bytes, 0)) * 1000 / static_cast<double>(time);
}

QString TransferSpeed::text(qint64 left) const
{
    if (mSamples.empty() || mSamples.back().milliseconds - mSamples.front().milliseconds < kLeast)
        return {};
    const double speed = bytesPerSecond();
    if (speed < 1)
        return tr("waiting for the service");
    const QString rate = DataSize::text(static_cast<qint64>(speed));
    const double seconds = std::min(static_cast<double>(left) / speed, kMostSecondsLeft);
    if (seconds >= kSecondsInMinutes)
        return tr("%1/s, about %n minute(s) left", nullptr, qRound(seconds / 60)).arg(rate);
    return tr("%1/s, about %n second(s) left", nullptr, qRound(seconds) + 1).arg(rate);
}
