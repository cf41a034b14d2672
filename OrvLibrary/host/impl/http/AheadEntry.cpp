#include "OrvLibrary/host/impl/http/AheadEntry_p.h"

#include <algorithm>

#include "OrvLibrary/host/impl/http/AheadPolicy_p.h"

namespace {

HttpLimits limitsAhead(const HttpLimits& limits, const AheadRequest& asked)
{
    HttpLimits ahead = limits;
    ahead.fileBytes = std::min(limits.fileBytes, asked.size);
    ahead.spareForOthers = AheadPolicy::kMostBytes;
    return ahead;
}

} // namespace

BodyAhead::BodyAhead(const HttpLimits& limits, const AheadRequest& asked)
    : mLimits(limitsAhead(limits, asked)), mFile(mLimits, asked.target)
{
}

void BodyAhead::beginTurn(const HttpLimits& limits, Curl::ProgressFunction progress, void* context)
{
    mLimits = limits;
    mFile.beginTurn(progress, context);
}
