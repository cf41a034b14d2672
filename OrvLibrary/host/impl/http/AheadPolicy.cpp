#include "OrvLibrary/host/impl/http/AheadPolicy_p.h"

#include <algorithm>

AheadPolicy::Allowance AheadPolicy::allowance(std::size_t connections, const host::DescriptorUse& descriptors)
{
    const std::size_t half = descriptors.limit / 2;
    return {std::clamp<std::size_t>(descriptors.limit / 4, 1, connections),
            std::min(kMostBodies, half - std::min(half, descriptors.open))};
}

std::size_t AheadPolicy::width(const AddressMemory::Known& known, bool isDownload,
                               std::size_t connectionLimit, bool isInTurn)
{
    if (!known.isOpen || isNear(known.latency))
        return 0;
    if (known.isMultiplexing)
        return isDownload ? kStreams : kHeaderStreams;
    const bool isOneTaken = isInTurn || connectionLimit == 1;
    return connectionLimit - (isOneTaken ? 1 : 0);
}

bool AheadPolicy::allowsBody(const Load& load, std::int64_t size, std::size_t most)
{
    return load.bodies < most && load.bytes + size <= kMostBytes &&
           (size <= kLarge || load.largeRunning < kMostLarge);
}

HttpLimits AheadPolicy::limitsAhead(const HttpLimits& limits, std::int64_t size)
{
    HttpLimits ahead = limits;
    ahead.fileBytes = std::min(limits.fileBytes, size);
    ahead.spare.forOthers = kMostBytes;
    return ahead;
}

AheadPolicy::Microseconds AheadPolicy::stallTime(Microseconds latency)
{
    constexpr Microseconds kShortest{1'000'000};
    constexpr int kLatencies = 8;
    return std::max(kShortest, latency * kLatencies);
}
