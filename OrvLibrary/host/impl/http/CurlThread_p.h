#pragma once

#include <exception>
#include <memory>
#include <new>
#include <optional>

#include "OrvLibrary/host/Curl.h"
#include "OrvLibrary/host/impl/http/AheadList_p.h"
#include "OrvLibrary/host/impl/http/HttpConnections_p.h"

/// The part of the download service that each thread has for itself.
struct CurlThread
{
    /// The object of the calling thread.
    static CurlThread& get()
    {
        static thread_local CurlThread thread;
        return thread;
    }
    /// The object for one request: usually the thread's. If a progress function makes a request, the thread's
    /// connections are in use, and the request gets a fresh object, which is put into `fresh`.
    static CurlThread& forRequest(std::optional<CurlThread>& fresh)
    {
        CurlThread& thread = get();
        return thread.connections.busy() ? fresh.emplace() : thread;
    }
    /// Runs a request of the calling thread.
    /// @param request returns whether it succeeded. If not, it sets `failure`. An exception is a failure.
    /// @param failure its reason becomes that of the last answer; empty if there is no memory for the text
    template <class Request>
    static bool attempt(FileBody::Failure& failure, const Request& request)
    try {
        lastAnswer = {};
        try {
            if (request())
                return true;
        } catch (const std::bad_alloc& error) {
            failure.error = CURLE_OUT_OF_MEMORY;
            failure.reason = error.what();
        } catch (const std::exception& error) {
            // An exception of the progress function counts as a cancel.
            failure.error = Curl::kAbortedByCallback;
            failure.reason = error.what();
        } catch (...) {
            failure.error = Curl::kAbortedByCallback;
            failure.reason = "Callback aborted";
        }
        lastAnswer.reason = failure.reason;
        return false;
    } catch (const std::bad_alloc&) {
        return false;
    }
    /// Sends `request`. If the answer is a redirect that is to be followed, sends the request to the new
    /// address, and so on. Takes the answer from the list of announced header requests if it is there.
    /// @return the final answer. It has an error and no status if a server did not answer, or if the
    /// redirects run in a circle, are too many or lead to a forbidden address.
    HttpAnswer ask(AddressMemory& memory, HttpRequest request, HttpBody& body);

    /// The answer to the calling thread's last request.
    inline static thread_local Curl::Answer lastAnswer;

    HttpConnections connections;
    /// Lists of announced requests; null if there are none.
    std::unique_ptr<AheadList> headers;
    std::unique_ptr<AheadList> downloads;

private:
    HttpAnswer askOnce(AddressMemory& memory, const HttpRequest& request, HttpBody& body);
};
