#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "OrvLibrary/OrvLibraryExport.h"
#include "OrvLibrary/host/fileString.h"

/// The download service. It knows http and https, follows at most 10 redirects but never from https to http,
/// and verifies the servers' certificates. An address is passed on as it was built, except that bytes that
/// HTTP cannot carry are percent-encoded.
///
/// All operations may be called from any thread. The default service throws only if memory runs out. If a
/// host service or the cancel question throws, the request fails.
class ORVLIBRARY_EXPORT Curl
{
public:
    /// Reports how far a transfer is, in bytes. It is called on the thread of the transfer: for every 4 KiB
    /// of the body, every 100 ms when no byte has arrived for a second, and at least once before a transfer
    /// ends successfully.
    /// @return 0 to go on, anything else to abort
    using ProgressFunction = int (*)(void* context, double downloadTotal, double downloaded,
                                     double uploadTotal, double uploaded);

    /// The `errorNumber` after the progress function aborted the transfer.
    static constexpr int kAbortedByCallback = 42;

    Curl();
    virtual ~Curl();
    Curl(const Curl&) = delete;
    Curl& operator=(const Curl&) = delete;

    /// Whether the text is an http or https address with a host. The scheme may be in capitals.
    virtual bool downloadable(const std::string& url) = 0;

    /// Downloads to a new temporary file.
    /// @return its path, owned by the caller; empty on failure, and then no file is left
    virtual fileString download(const std::string& url) = 0;

    /// Downloads to `target`, which is replaced only on success: the transfer had no error, the status is
    /// 200, every byte is on the disk, and the length equals `Content-Length` if it was sent. Otherwise
    /// returns false, sets `reason`, and leaves no partial file.
    virtual bool download_to_location(const std::string& url, const fileString& target,
                                      std::string& reason) = 0;

    /// Does the same with further header lines and a progress function.
    /// @param context passed to `progress` unchanged; may be null
    /// @param progress may be null
    /// @param errorNumber set on failure: a number of the transfer library; `kAbortedByCallback` after an
    /// abort
    virtual bool download_to_location(const std::string& url, const fileString& target,
                                      const std::vector<std::string>& headerLines, void* context,
                                      ProgressFunction progress, std::string& reason, int& errorNumber) = 0;

    /// Requests only the header of an answer. True for any HTTP status. False if there was no answer; the
    /// outputs are then unchanged.
    /// @param headerText the header block of the final answer; folded lines are joined
    virtual bool getURLHeader(const std::string& url, const std::vector<std::string>& headerLines,
                              std::string& headerText, std::int64_t& status) = 0;

    /// Fetches a page. False after a transfer error or for a status of 400 or more. In both cases `body` has
    /// the bytes that arrived, such as an error page.
    /// @param followRedirects whether redirects are followed; the library passes true
    /// @param timeoutSeconds a limit below 60 s; 0 for the service's own limit of 60 s
    virtual bool browseURL(const std::string& url, const std::vector<std::string>& headerLines,
                           std::string& body, bool followRedirects, int timeoutSeconds) = 0;

    /// A header request that will be made.
    struct HeaderRequest
    {
        std::string url;
        std::vector<std::string> headerLines;
    };
    /// Announces the calls of `getURLHeader` that this thread will make, so that a service may send the
    /// requests ahead. A call with the same address and header lines then gets the answer that is already
    /// there, or waits for it. Each answer serves one call. A new list replaces the former one; an empty list
    /// drops all answers not yet used. The base class does nothing.
    virtual void prefetchHeaders(const std::vector<HeaderRequest>& requests);

    /// A download that will be made.
    struct DownloadRequest
    {
        std::string url;
        std::vector<std::string> headerLines;
        fileString target;
        /// The size of the body in bytes, as a header request reported it; 0 if unknown.
        std::int64_t size = 0;
    };
    /// Announces the calls of `download_to_location` that this thread will make, in their order. A service
    /// may then fetch the bodies ahead, into its own files beside the targets. The call for a target waits
    /// until its file is complete and gives it the target's name. During this call the progress function is
    /// called for the bytes that are there and for those that arrive; before the call it is not called at
    /// all. If a body could not be fetched ahead, its call requests it again, and only that request can fail.
    /// Other calls may be made in between. A new list replaces the former one. An empty list ends all
    /// transfers and removes all files not yet used.
    ///
    /// The default service fetches bodies ahead only where this saves time: for at least four downloads from
    /// an address that took at least 5 ms to answer. It fetches at most 64 MB ahead, and at most two files
    /// over 8 MB at a time. The base class does nothing.
    virtual void prefetchDownloads(const std::vector<DownloadRequest>& requests);

    /// The address at the end of all redirects, whatever its status. Each `Location` is used as it was sent,
    /// so a "?" at its end is kept. Empty if there was no answer, or if the redirects run in a circle or are
    /// too many. The base class asks the default service.
    virtual std::string urlAfterRedirects(const std::string& url);

    /// The answer to a request.
    struct Answer
    {
        std::int64_t status = 0; ///< HTTP status of the final answer; 0 if there was none
        std::string headerText;  ///< header block of the final answer; empty if there was none
        std::string reason;      ///< why there was no answer or no complete body; otherwise empty
        std::string url;         ///< the address of the final answer, after redirects
    };
    /// The answer to this thread's last request of any kind. A request sent ahead counts when its call gets
    /// the answer. The base class returns an empty answer.
    virtual Answer lastAnswer();

    /// A download with a partial file that is kept, so that a later call can continue it.
    struct ResumableDownload
    {
        std::string url;
        std::vector<std::string> headerLines;
        fileString target;
        /// The file that the bytes are written to. It stays if the download fails, and becomes `target` when
        /// it is complete.
        fileString partial;
        /// Identifies the version that the bytes in `partial` belong to: a strong entity tag in quotes, or a
        /// `Last-Modified` date. If empty, the download starts at the first byte.
        std::string validator;
    };
    /// Downloads like `download_to_location`, but requests only the bytes that `partial` lacks (with `Range`
    /// and `If-Range`). If the server has another version or does not support ranges, it sends the whole
    /// body, which replaces the partial file. The progress function's counts include the bytes that were
    /// there. If the digest of the result is wrong, the partial file is removed. The base class downloads the
    /// whole file.
    virtual bool downloadResumable(const ResumableDownload& request, void* context, ProgressFunction progress,
                                   std::string& reason, int& errorNumber);

    /// Asked by the default service at least every 100 ms while a request waits. If it returns true, the
    /// request ends, and no other request begins.
    using CancelQuestion = bool (*)();
    /// Sets the question for the requests of this thread; null for none.
    /// @return the former question
    static CancelQuestion setCancelQuestion(CancelQuestion question);

    /// Makes the default service trust only the certificates in a PEM file or in a folder of hashed
    /// certificates. With an empty text, and at first, it trusts those that `SSL_CERT_FILE` and
    /// `SSL_CERT_DIR` name or, if they are not set, those of the system.
    static void setCertificates(const std::string& fileOrFolder);

    /// Limits the bytes per second that all transfers of the default service receive together; 0 for no
    /// limit.
    static void setRateLimit(std::int64_t bytesPerSecond);

    /// Makes the default service use a proxy, such as "http://proxy.example:3128". With an empty text, and at
    /// first, it uses the proxy that `http_proxy`, `https_proxy` and `no_proxy` name.
    static void setProxy(const std::string& proxy);

    /// Makes the default service send requests to every address again. After three requests in a row without
    /// any answer it sends none to an address for 60 s, even if the user has repaired the network meanwhile.
    static void forgetFailures();

    /// Sets how many connections to one host the default service opens at once: 1 to 96, at first 16. Takes
    /// effect with the next list of announced requests.
    static void setConnectionLimit(int connections);

    static Curl& get();
    /// Makes `get` return `service`, or the default if null. The caller keeps ownership.
    /// @return the former service; null if it was the default
    static Curl* install(Curl* service);
};
