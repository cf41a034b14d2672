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

    /// Sends `request`, and again to where the answers lead.
    /// @param follow false takes the first answer for the final one
    /// @return the final answer; one with an error and without a status when there is none: a server that
    /// does not answer, a loop, too many redirects, or one to where nobody may be led
    HttpAnswer run(HttpRequest request, HttpBody& body, bool follow);
    /// The address of the final answer.
    const std::string& finalUrl() const { return mUrl; }

private:
    bool takeAhead(const HttpRequest& request, HttpAnswer& answer);
    HttpAnswer send(const HttpRequest& request, HttpBody& body);

    HttpConnections& mConnections;
    AheadList* const mAhead;
    AddressMemory& mMemory;
    const HttpLimits& mLimits;
    const HttpLimits::Clock::time_point mDeadline;
    std::string mUrl;
};
