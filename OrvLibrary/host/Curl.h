#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "OrvLibrary/OrvLibraryExport.h"
#include "OrvLibrary/host/fileString.h"

/// The download service. An address is an 8-bit text. It is passed on as it was built, except that bytes that
/// HTTP cannot carry are percent-encoded. The service knows http and https, follows at most 10 redirects,
/// never from https to http, and verifies its peers. All operations may be called from any thread. Those of
/// the default implementation throw only where memory runs out; what else goes wrong, in a host service or in
/// the question of a cancel too, ends the request as a failure.
class ORVLIBRARY_EXPORT Curl
{
public:
    /// Hears how a transfer goes on, in bytes. It is called for every 4 KiB of body, every 100 ms once a
    /// second has passed without a byte, and at least once before a transfer ends well, on the thread of the
    /// transfer.
    /// @return 0 to go on, anything else to abort
    using ProgressFunction = int (*)(void* context, double downloadTotal, double downloaded,
                                     double uploadTotal, double uploaded);

    /// `errorNumber` of a transfer that the progress function aborted.
    static constexpr int kAbortedByCallback = 42;

    Curl();
    virtual ~Curl();
    Curl(const Curl&) = delete;
    Curl& operator=(const Curl&) = delete;

    /// Whether the text is an http or https address with a host, whatever the letter case of the scheme.
    virtual bool downloadable(const std::string& url) = 0;

    /// Downloads to a fresh temporary file.
    /// @return its path, owned by the caller; empty on failure, and then no file is left
    virtual fileString download(const std::string& url) = 0;

    /// Downloads to `target`, which is replaced when all went well. Success is: no transfer error, HTTP
    /// status 200, every byte on disk, the length equal to `Content-Length` where one was sent. Otherwise
    /// false, `reason` says why, and no partial file is left.
    virtual bool download_to_location(const std::string& url, const fileString& target,
                                      std::string& reason) = 0;

    /// The same with extra request header lines and progress.
    /// @param context handed to `progress` as it is; may be null
    /// @param progress may be null
    /// @param errorNumber set on failure: the transfer library's number, `kAbortedByCallback` after an abort
    virtual bool download_to_location(const std::string& url, const fileString& target,
                                      const std::vector<std::string>& headerLines, void* context,
                                      ProgressFunction progress, std::string& reason, int& errorNumber) = 0;

    /// Header-only request with extra request header lines. True for any HTTP status; false when none was
    /// obtained, and then the outputs are untouched.
    /// @param headerText the header block of the final answer alone, folded lines unfolded
    virtual bool getURLHeader(const std::string& url, const std::vector<std::string>& headerLines,
                              std::string& headerText, std::int64_t& status) = 0;

    /// Fetches a page. False for a transfer error or a status of 400 or more. `body` then still holds the
    /// bytes that came, such as the page of an error.
    /// @param followRedirects whether redirects are followed; the library passes true
    /// @param timeoutSeconds a limit below 60 s; 0 for the service's own, which is 60 s
    virtual bool browseURL(const std::string& url, const std::vector<std::string>& headerLines,
                           std::string& body, bool followRedirects, int timeoutSeconds) = 0;

    /// A header request that is going to be made.
    struct HeaderRequest
    {
        std::string url;
        std::vector<std::string> headerLines;
    };
    /// Tells which calls of `getURLHeader` the calling thread is about to make, so that a service may send
    /// the requests ahead. A call with the same address and header lines then returns the answer that is
    /// already there, or waits for it; each answer serves one call. A further list takes the place of the
    /// former one, and an empty list drops the answers that nobody took. The base class does nothing.
    virtual void prefetchHeaders(const std::vector<HeaderRequest>& requests);

    /// A download that is going to be made.
    struct DownloadRequest
    {
        std::string url;
        std::vector<std::string> headerLines;
        fileString target;
        /// Of the body, in bytes, as a header request told it; 0 when it is not known.
        std::int64_t size = 0;
    };
    /// Tells which calls of `download_to_location` the calling thread is about to make, in their order, so
    /// that a service may fetch the bodies ahead, into files of its own beside the targets. The call for a
    /// target then waits for the end of its file and gives it the target's name. Meanwhile it tells the
    /// progress function of the bytes that are there and of those that come. No progress function hears of a
    /// transfer before its call. A call whose body could not be fetched ahead asks for it anew, and only the
    /// failure of that request counts. Other calls can be made in between. A further list takes the place of
    /// the former one. An empty list ends all transfers and removes the files that nobody took.
    ///
    /// The default service fetches bodies ahead where it pays: for four downloads or more, from an address
    /// that took 5 ms or longer to answer. It asks a nearer service in turn. At most 64 MB are fetched ahead,
    /// with at most two transfers of files over 8 MB at a time. The base class does nothing.
    virtual void prefetchDownloads(const std::vector<DownloadRequest>& requests);

    /// The address that redirects lead to, whatever its status is. Each `Location` is read as it was sent, so
    /// that a lone trailing "?" survives. Empty when there was no answer, a loop or too many redirects. The
    /// base class asks the default service.
    virtual std::string urlAfterRedirects(const std::string& url);

    /// The answer to a request.
    struct Answer
    {
        std::int64_t status = 0; ///< HTTP status of the final answer; 0 when there was none
        std::string headerText;  ///< header block of the final answer; empty when there was none
        std::string reason;      ///< why there was no answer, or why its body did not arrive; else empty
        std::string url;         ///< the address that gave the final answer, after redirects
    };
    /// The answer to the calling thread's last request, of whatever kind; a request that was sent ahead
    /// counts when its own call takes the answer. The base class knows no answer.
    virtual Answer lastAnswer();

    /// A download whose partial file is kept, so that a later call can go on where it broke off.
    struct ResumableDownload
    {
        std::string url;
        std::vector<std::string> headerLines;
        fileString target;
        /// Where the body grows. It is kept when the download fails, and becomes `target` when it is whole.
        fileString partial;
        /// The strong entity tag, in its quotes, or the `Last-Modified` date of the version that the bytes in
        /// `partial` belong to. Empty: the download starts at the first byte.
        std::string validator;
    };
    /// Downloads like `download_to_location`, but asks only for what `partial` lacks (`Range` with
    /// `If-Range`). A service that has another version, or no ranges, sends the whole body, which then
    /// replaces what was there. The counts of the progress function start at what was there. A partial file
    /// whose digest turns out wrong is removed. The base class downloads everything anew.
    virtual bool downloadResumable(const ResumableDownload& request, void* context, ProgressFunction progress,
                                   std::string& reason, int& errorNumber);

    /// The default service asks this question at least every 100 ms while a request waits. True ends the
    /// request, and lets no further request begin.
    using CancelQuestion = bool (*)();
    /// Sets the question for the requests of the calling thread; null for none.
    /// @return the former question
    static CancelQuestion setCancelQuestion(CancelQuestion question);

    /// Makes the default service trust only the authorities in a PEM file, or in a folder of hashed
    /// certificates. With an empty text, and at first, it trusts those that `SSL_CERT_FILE` and
    /// `SSL_CERT_DIR` name, or else those of the system.
    static void setCertificates(const std::string& fileOrFolder);

    /// Bounds the bytes a second that all transfers of the default service together receive; 0 for no bound.
    static void setRateLimit(std::int64_t bytesPerSecond);

    /// Makes the default service use a proxy, such as "http://proxy.example:3128". With an empty text, and at
    /// first, it uses the proxy that `http_proxy`, `https_proxy` and `no_proxy` name.
    static void setProxy(const std::string& proxy);

    /// Makes the default service ask every address again at once. After three requests in a row without any
    /// answer it would leave an address alone for 60 s, also when the user has repaired the network
    /// meanwhile.
    static void forgetFailures();

    /// How many connections to one host the default service opens at once: 16 at first, 1 at least, 96 at
    /// most. Counts from the next list of requests on.
    static void setConnectionLimit(int connections);

    static Curl& get();
    /// Makes `service` the one that `get` returns; null for the default. The pointer is not owned.
    /// @return the former service, null when it was the default
    static Curl* install(Curl* service);
};
