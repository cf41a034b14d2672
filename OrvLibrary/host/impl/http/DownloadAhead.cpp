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

DownloadAhead::DownloadAhead(const HttpLimits& serviceLimits, const fileString& target, std::int64_t size)
    : limits(limitsAhead(serviceLimits, size)), body(limits, target)
{
}

void DownloadAhead::beginTurn(const HttpLimits& serviceLimits, Curl::ProgressFunction progress, void* context)
{
    limits = serviceLimits;
    body.beginTurn(progress, context);
}

bool DownloadAhead::isTold() const
{
    return body.isTold() || body.isAborted() || answer.error == CURLE_ABORTED_BY_CALLBACK;
}
