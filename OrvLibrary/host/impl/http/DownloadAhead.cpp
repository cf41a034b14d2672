#include "OrvLibrary/host/impl/http/DownloadAhead_p.h"

#include <algorithm>

#include "OrvLibrary/host/impl/http/AheadPolicy_p.h"

namespace {

HttpLimits limitsAhead(const HttpLimits& limits, std::int64_t size)
{
    HttpLimits ahead = limits;
    ahead.fileBytes = std::min(limits.fileBytes, size);
    ahead.spareForOthers = AheadPolicy::kMostBytes;
    return ahead;
}

} // namespace

DownloadAhead::DownloadAhead(const HttpLimits& serviceLimits, const fileString& target, std::int64_t size,
                             TimePoint now)
    : limits(limitsAhead(serviceLimits, size)),
      pacer(limits, nullptr, nullptr, now),
      body(limits, target, pacer, now)
{
}

void DownloadAhead::beginTurn(const HttpLimits& serviceLimits, Curl::ProgressFunction progress, void* context)
{
    limits = serviceLimits;
    body.limitsChanged();
    pacer.attach(progress, context, HttpLimits::Clock::now());
}

bool DownloadAhead::isTold() const
{
    return pacer.toldOfBytes() || pacer.aborted() || answer.error == CURLE_ABORTED_BY_CALLBACK;
}
