#pragma once

#include <string>
#include <vector>

#include "OrvLibrary/host/WebUtils.h"

namespace test {

/// A response exactly as a plain HTTP client receives it.
struct ProbeAnswer
{
    long status = 0;
    std::string headerText;
    WebUtils::HeaderMap headers;
    std::string body;

    /// The value of a header that occurs once; empty if it is missing or repeated.
    std::string header(const std::string& name) const;
};

/// Sends one request on a new connection. Does not follow redirects.
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

/// Sends these bytes unchanged. Returns everything that arrives until the server closes the connection or
/// sends nothing for 200 ms.
std::string rawExchange(int port, const std::string& bytes);

} // namespace test
