#pragma once

#include <string>
#include <vector>

#include "OrvLibrary/host/WebUtils.h"

namespace test {

/// What a plain HTTP client gets, nothing smoothed over.
struct ProbeAnswer
{
    long status = 0;
    std::string headerText;
    WebUtils::HeaderMap headers;
    std::string body;

    /// The only value of a header; empty when there is none or more than one.
    std::string header(const std::string& name) const;
};

/// Sends one request on a connection of its own; redirects are not followed.
ProbeAnswer probe(const std::string& method, const std::string& url,
                  const std::vector<std::string>& headerLines = {});
inline ProbeAnswer get(const std::string& url, const std::vector<std::string>& headerLines = {})
{
    return probe("GET", url, headerLines);
}
inline ProbeAnswer head(const std::string& url, const std::vector<std::string>& headerLines = {})
{
    return probe("HEAD", url, headerLines);
}

/// Sends these bytes as they are and returns all that comes until the server closes, or goes silent for
/// 200 ms.
std::string rawExchange(int port, const std::string& bytes);

} // namespace test
