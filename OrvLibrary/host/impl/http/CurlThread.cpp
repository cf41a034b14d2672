// How it works: `ask` sends the request, looks for a redirect in the answer, checks the new address and sends
// the request there, until an answer is final. `askOnce` makes one such step: it refuses a closed address,
// takes the answer of a request that was sent ahead or sends the request itself, and repeats it alone if the
// server may have refused it only because of others.
#include "OrvLibrary/host/impl/http/CurlThread_p.h"

#include <set>

#include "OrvLibrary/host/impl/http/CancelQuestion_p.h"
#include "OrvLibrary/host/impl/text/HttpAddress_p.h"
#include "OrvLibrary/host/impl/text/HttpRedirect_p.h"

HttpAnswer CurlThread::ask(AddressMemory& memory, HttpRequest request, HttpBody& body)
{
    if (!HttpAddress::isWebAddress(request.url))
        return HttpAnswer::failure(CURLE_UNSUPPORTED_PROTOCOL, "not a web address");
    std::set<std::string> visited;
    for (int redirects = 0;; ++redirects) {
        visited.insert(request.url);
        HttpAnswer answer = askOnce(memory, request, body);
        answer.url = request.url;
        if (!request.isFollowed || answer.error == CURLE_ABORTED_BY_CALLBACK)
            return answer;
        // Only the header counts. Even if the body failed, the redirect is followed.
        const std::string target = HttpRedirect::target(answer.url, answer.status, answer.headerText);
        if (target.empty())
            return answer;
        if (redirects == body.limits().redirects)
            return HttpAnswer::failure(CURLE_TOO_MANY_REDIRECTS, "too many redirects", answer.url);
        if (!HttpAddress::mayLead(answer.url, target))
            return HttpAnswer::failure(CURLE_UNSUPPORTED_PROTOCOL,
                                       "redirect to a forbidden address: " + target, answer.url);
        if (visited.count(target) != 0)
            return HttpAnswer::failure(CURLE_TOO_MANY_REDIRECTS, "redirects in a circle", answer.url);
        HttpRedirect::removeSecrets(request.headerLines, answer.url, target);
        request.url = target;
    }
}

/// Sends one request, unless its answer is there already.
HttpAnswer CurlThread::askOnce(AddressMemory& memory, const HttpRequest& request, HttpBody& body)
{
    if (CancelQuestion::isCancelled())
        return HttpAnswer::cancelled();
    const std::string address = HttpAddress::hostAndPort(request.url);
    const AddressMemory::Known known = memory.known(address);
    if (!known.isOpen) {
        return HttpAnswer::failure(CURLE_COULDNT_CONNECT,
                                   "no answer from " + address + " a moment ago: " + known.lastReason);
    }
    HttpAnswer answer;
    const bool isAhead = request.headerOnly && headers && headers->takeAnswer(request, answer);
    if (!isAhead)
        answer = connections.perform(request, body);
    if (answer.isRefusedInCompany()) {
        connections.stopAhead();
        answer = connections.perform(request, body);
    }
    memory.note(address, answer);
    return answer;
}
