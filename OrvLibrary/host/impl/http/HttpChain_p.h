#pragma once

#include <string>

#include "OrvLibrary/host/impl/http/AheadList_p.h"

/// Sends a request and follows redirects, one after the other.
class HttpChain
{
public:
    /// @param ahead the header requests that were sent ahead; may be null
    HttpChain(HttpConnections& connections, AheadList* ahead, AddressMemory& memory, const HttpLimits& limits,
              HttpLimits::Clock::time_point deadline);

    /// Sends `request`. If the answer is a redirect, sends the request to the new address, and so on.
    /// @param follow if false, the first answer is the final one
    /// @return the final answer. It has an error and no status if a server did not answer, or if the
    /// redirects run in a circle, are too many or lead to a forbidden address.
    HttpAnswer run(HttpRequest request, HttpBody& body, bool follow);
    /// The address of the final answer.
    const std::string& finalUrl() const { return mUrl; }

private:
    HttpAnswer send(const HttpRequest& request, HttpBody& body);

    HttpConnections& mConnections;
    AheadList* const mAhead;
    AddressMemory& mMemory;
    const HttpLimits& mLimits;
    const HttpLimits::Clock::time_point mDeadline;
    std::string mUrl;
};
