// How it works: `run` sends the request, looks for a redirect in the answer, checks the new address and sends
// the request there, until an answer is final. `send` makes one such step: it refuses a closed address, takes
// the answer of a request that was sent ahead or sends the request itself, and repeats it alone if the server
// may have refused it only because of others.
#include "OrvLibrary/host/impl/http/HttpChain_p.h"

#include <algorithm>
#include <set>

#include "OrvLibrary/host/WebUtils.h"
#include "OrvLibrary/host/impl/http/CancelQuestion_p.h"
#include "OrvLibrary/host/impl/text/Ascii_p.h"
#include "OrvLibrary/host/impl/text/HttpAddress_p.h"

namespace {

/// The address that an answer redirects to; empty if none. Only the header counts. Even if the body failed,
/// the redirect is followed.
std::string redirectTarget(const std::string& url, const HttpAnswer& answer)
{
    if (answer.error == CURLE_ABORTED_BY_CALLBACK || !isRedirectStatus(answer.status))
        return {};
    WebUtils::HeaderMap headers;
    WebUtils::parseReturnHeader(answer.headerText, headers);
    const auto location = headers.find("Location");
    if (location == headers.end() || location->second.front().empty())
        return {};
    return HttpAddress::withoutFragment(HttpAddress::resolve(url, location->second.front()));
}

/// Header lines that only the first server may see.
bool isSecret(const std::string& line)
{
    const std::string name = line.substr(0, line.find(':'));
    return Ascii::equal(name, "Authorization") || Ascii::equal(name, "Cookie");
}

void removeSecrets(std::vector<std::string>& lines)
{
    lines.erase(std::remove_if(lines.begin(), lines.end(), isSecret), lines.end());
}

} // namespace

HttpChain::HttpChain(HttpConnections& connections, AheadList* ahead, AddressMemory& memory,
                     const HttpLimits& limits, HttpLimits::Clock::time_point deadline)
    : mConnections(connections), mAhead(ahead), mMemory(memory), mLimits(limits), mDeadline(deadline)
{
}

HttpAnswer HttpChain::run(HttpRequest request, HttpBody& body, bool follow)
{
    if (!HttpAddress::isWebAddress(request.url))
        return HttpAnswer::failure(CURLE_UNSUPPORTED_PROTOCOL, "not a web address");
    request.isFollowed = follow;
    std::set<std::string> visited;
    for (int redirects = 0;; ++redirects) {
        mUrl = request.url;
        visited.insert(mUrl);
        HttpAnswer answer = send(request, body);
        const std::string target = follow ? redirectTarget(mUrl, answer) : std::string();
        if (target.empty())
            return answer;
        if (redirects == mLimits.redirects)
            return HttpAnswer::failure(CURLE_TOO_MANY_REDIRECTS, "too many redirects");
        if (!HttpAddress::mayLead(mUrl, target))
            return HttpAnswer::failure(CURLE_UNSUPPORTED_PROTOCOL,
                                       "redirect to a forbidden address: " + target);
        if (visited.count(target) != 0)
            return HttpAnswer::failure(CURLE_TOO_MANY_REDIRECTS, "redirects in a circle");
        if (HttpAddress::hostAndPort(target) != HttpAddress::hostAndPort(mUrl))
            removeSecrets(request.headerLines);
        request.url = target;
    }
}

HttpAnswer HttpChain::send(const HttpRequest& request, HttpBody& body)
{
    if (CancelQuestion::isCancelled())
        return HttpAnswer::cancelled();
    const std::string address = HttpAddress::hostAndPort(request.url);
    if (!mMemory.isOpen(address)) {
        return HttpAnswer::failure(CURLE_COULDNT_CONNECT, "no answer from " + address + " a moment ago: " +
                                                              mMemory.lastReason(address));
    }
    HttpAnswer answer;
    const bool isAhead = request.headerOnly && mAhead && mAhead->takeAnswer(request, answer);
    if (!isAhead) {
        if (CancelQuestion::isCancelled())
            return HttpAnswer::cancelled();
        answer = mConnections.perform(request, body, mDeadline);
    }
    if (answer.isRefusedInCompany()) {
        mConnections.stopAhead();
        answer = mConnections.perform(request, body, mDeadline);
    }
    mMemory.note(address, answer);
    return answer;
}
