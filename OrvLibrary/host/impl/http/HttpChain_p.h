#pragma once

#include <string>

#include "OrvLibrary/host/impl/http/AddressGuard_p.h"
#include "OrvLibrary/host/impl/http/HttpConnections_p.h"

/// Follows redirects step by step, each `Location` read as it was sent.
class HttpChain
{
public:
    HttpChain(HttpConnections& connections, AddressGuard& guard, const HttpLimits& limits,
              HttpLimits::Clock::time_point deadline);

    /// Sends `request`, and again to where the answers lead.
    /// @param follow false takes the first answer for the final one
    /// @return the final answer; one with an error and without a status when there is none: a server that
    /// does not answer, a loop, too many redirects, or one to where nobody may be led
    HttpAnswer run(HttpRequest request, HttpBody& body, bool follow);
    /// The address of the final answer.
    const std::string& finalUrl() const { return mUrl; }

private:
    bool takePrefetched(const HttpRequest& request, HttpAnswer& answer);
    HttpAnswer send(const HttpRequest& request, HttpBody& body);

    HttpConnections& mConnections;
    AddressGuard& mGuard;
    const HttpLimits& mLimits;
    const HttpLimits::Clock::time_point mDeadline;
    std::string mUrl;
};
