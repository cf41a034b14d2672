#pragma once

#include <cstdint>
#include <string>
#include <vector>

/// Where a redirect leads, and what goes along.
namespace HttpRedirect {

/// Whether the status is one of the redirects that are followed.
constexpr bool isStatus(std::int64_t status)
{
    return status == 301 || status == 302 || status == 303 || status == 307 || status == 308;
}

/// The address, without its fragment, that an answer from `url` redirects to; empty if it is no redirect.
std::string target(const std::string& url, std::int64_t status, const std::string& headerText);

/// Removes the header lines that only the server of `url` may see, if `target` is on another one.
void removeSecrets(std::vector<std::string>& headerLines, const std::string& url, const std::string& target);

} // namespace HttpRedirect
