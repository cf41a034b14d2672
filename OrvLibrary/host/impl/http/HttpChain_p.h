#pragma once

#include <string>

#include "OrvLibrary/host/impl/http/AheadList_p.h"

/// Follows redirects step by step, each `Location` read as it was sent.
class HttpChain
{
public:
    /// @param ahead header requests that were sent ahead; may be null
    HttpChain(HttpConnections& connections, AheadList* ahead, AddressMemory& memory, const HttpLimits& limits,
              HttpLimits::Clock::time_point deadline);

    /// Sends `request`, and sends it again to each address that an answer redirects to.
    /// @param follow false: the first answer is the final one
    /// @return the final answer. It has an error and no status when a server did not answer, and after a
    /// loop, too many redirects, or a redirect to a forbidden address.
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
