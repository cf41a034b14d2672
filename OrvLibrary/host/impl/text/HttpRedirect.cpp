#include "OrvLibrary/host/impl/text/HttpRedirect_p.h"

#include <algorithm>

#include "OrvLibrary/host/WebUtils.h"
#include "OrvLibrary/host/impl/text/Ascii_p.h"
#include "OrvLibrary/host/impl/text/HttpAddress_p.h"

namespace {

bool isSecret(const std::string& line)
{
    const std::string name = line.substr(0, line.find(':'));
    return Ascii::equal(name, "Authorization") || Ascii::equal(name, "Cookie");
}

} // namespace

std::string HttpRedirect::target(const std::string& url, std::int64_t status, const std::string& headerText)
{
    if (!isStatus(status))
        return {};
    WebUtils::HeaderMap headers;
    WebUtils::parseReturnHeader(headerText, headers);
    const auto location = headers.find("Location");
    if (location == headers.end() || location->second.front().empty())
        return {};
    return HttpAddress::withoutFragment(HttpAddress::resolve(url, location->second.front()));
}

void HttpRedirect::removeSecrets(std::vector<std::string>& headerLines, const std::string& url,
                                 const std::string& target)
{
    if (HttpAddress::hostAndPort(target) != HttpAddress::hostAndPort(url))
        headerLines.erase(std::remove_if(headerLines.begin(), headerLines.end(), isSecret),
                          headerLines.end());
}
