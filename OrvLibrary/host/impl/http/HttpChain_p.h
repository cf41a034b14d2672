#pragma once

#include "OrvLibrary/host/impl/http/CurlThread_p.h"

/// Sends requests and follows redirects.
namespace HttpChain {

/// Sends `request`. If the answer is a redirect that is to be followed, sends the request to the new address,
/// and so on. Takes an answer from the thread's list of announced header requests if it is there.
/// @return the final answer. It has an error and no status if a server did not answer, or if the redirects
/// run in a circle, are too many or lead to a forbidden address.
HttpAnswer run(CurlThread& thread, AddressMemory& memory, HttpRequest request, HttpBody& body);

} // namespace HttpChain
