// How it works: a download first asks the list of announced downloads, which may have the body already.
// Otherwise the object of the calling thread sends the request, for the whole file or for the rest of a
// partial file, and a `FileBody` writes it. If the server's answer does not continue the partial file, the
// loop starts again with the whole file. `conclude` renames a good file and explains a failure.
#include <exception>
#include <optional>
#include <utility>

#include "OrvLibrary/host/FileUtils.h"
#include "OrvLibrary/host/impl/http/CancelQuestion_p.h"
#include "OrvLibrary/host/impl/http/CurlService_p.h"
#include "OrvLibrary/host/impl/http/CurlThread_p.h"
#include "OrvLibrary/host/impl/text/HttpAddress_p.h"

namespace {

/// Runs a download and reports its failure.
template <class Download>
bool attempt(std::string& reason, int& errorNumber, const Download& download)
{
    FileBody::Failure failure;
    if (CurlThread::attempt(failure, [&] { return download(failure); }))
        return true;
    reason = std::move(failure.reason);
    errorNumber = failure.error;
    return false;
}

/// Finds the reason for a download's failure.
FileBody::Failure failureOf(const HttpAnswer& answer, const FileBody& body)
{
    if (body.isAborted())
        return {Curl::kAbortedByCallback, "Callback aborted"};
    if (!body.failure().reason.empty())
        return body.failure();
    if (answer.status != 0 && !body.bringsFile())
        return {CURLE_HTTP_RETURNED_ERROR, "HTTP " + std::to_string(answer.status)};
    return {answer.error, answer.errorText};
}

/// Gives the file its name if all went well. Otherwise sets `failure`.
bool conclude(CurlThread& thread, const HttpAnswer& answer, FileBody& body, FileBody::Failure& failure)
{
    CurlThread::lastAnswer = {answer.status, answer.headerText, answer.errorText, answer.url};
    const HttpConnections::Work work(thread.connections); // because `complete` may call the progress function
    if (answer.error == CURLE_OK && body.bringsFile() && body.complete())
        return true;
    failure = failureOf(answer, body);
    return false;
}

/// Whether a partial file is there that the download can continue.
bool hasBytes(const Curl::ResumableDownload& download)
{
    return !download.partial.empty() && !download.validator.empty() &&
           FileUtils::fileSize(download.partial) > 0;
}

/// Adds the header lines that ask only for the bytes missing from the partial file. The request stays as it
/// is if the partial file cannot be used.
HttpRequest requestForRest(HttpRequest request, FileBody& body, const std::string& validator)
{
    const std::int64_t size = body.resume(validator);
    if (size > 0) {
        request.headerLines.push_back("Range: bytes=" + std::to_string(size) + "-");
        request.headerLines.push_back("If-Range: " + validator);
    }
    return request;
}

} // namespace

fileString CurlService::download(const std::string& url)
{
    ResumableDownload download;
    FileBody::Failure failure;
    const bool isHere = CurlThread::attempt(failure, [&] {
        download.url = url;
        download.target.generateAsTempName(".download");
        return downloadOrThrow(download, nullptr, nullptr, failure);
    });
    return isHere ? std::move(download.target) : fileString();
}

bool CurlService::download_to_location(const std::string& url, const fileString& target, std::string& reason)
{
    int errorNumber = 0;
    return download_to_location(url, target, {}, nullptr, nullptr, reason, errorNumber);
}

bool CurlService::download_to_location(const std::string& url, const fileString& target,
                                       const std::vector<std::string>& headerLines, void* context,
                                       ProgressFunction progress, std::string& reason, int& errorNumber)
{
    return attempt(reason, errorNumber, [&](FileBody::Failure& failure) {
        ResumableDownload download;
        download.url = url;
        download.headerLines = headerLines;
        download.target = target;
        return downloadOrThrow(download, context, progress, failure);
    });
}

bool CurlService::downloadResumable(const ResumableDownload& request, void* context,
                                    ProgressFunction progress, std::string& reason, int& errorNumber)
{
    return attempt(reason, errorNumber, [&](FileBody::Failure& failure) {
        return downloadOrThrow(request, context, progress, failure);
    });
}

/// @throws whatever the progress function throws
bool CurlService::downloadOrThrow(const ResumableDownload& download, void* context, ProgressFunction progress,
                                  FileBody::Failure& failure)
{
    if (::CancelQuestion::isCancelled()) {
        failure = {kAbortedByCallback, "Callback aborted"};
        return false;
    }
    std::optional<CurlThread> fresh;
    CurlThread& thread = CurlThread::forRequest(fresh);
    const HttpRequest asked = request(download.url, download.headerLines);
    AheadList* const list = hasBytes(download) ? nullptr : thread.downloads.get();
    HttpAnswer answer;
    if (const auto ahead =
            list ? list->takeDownload(asked, download.target, progress, context, answer) : nullptr) {
        mMemory->note(HttpAddress::hostAndPort(download.url), answer);
        answer.url = download.url;
        return conclude(thread, answer, *ahead, failure);
    }
    bool mustStartAnew = false;
    do {
        FileBody body(mLimits, download.target, download.partial, progress, context);
        HttpRequest rest = requestForRest(asked, body, mustStartAnew ? std::string() : download.validator);
        if (body.failure().reason.empty())
            answer = thread.ask(*mMemory, std::move(rest), body);
        if (conclude(thread, answer, body, failure))
            return true;
        mustStartAnew = body.mustStartAnew() && !body.isAborted();
    } while (mustStartAnew);
    return false;
}

void CurlService::prefetchDownloads(const std::vector<DownloadRequest>& requests)
{
    announce(&CurlThread::downloads, [&](std::vector<AheadRequest>& list) {
        for (const DownloadRequest& download : requests) {
            const AddressMemory::Known known = mMemory->known(HttpAddress::hostAndPort(download.url));
            // Fetching ahead from a near server saves no time. A text that is no web address counts as near.
            if (requests.size() < AheadPolicy::kFewestBodies || !known.isOpen ||
                AheadPolicy::isNear(known.latency))
                continue;
            list.push_back({request(download.url, download.headerLines), download.target, download.size});
        }
    });
}
