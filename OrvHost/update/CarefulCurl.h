#pragma once

#include <atomic>
#include <map>
#include <mutex>
#include <string>
#include <vector>

#include "OrvHost/OrvHostExport.h"
#include "OrvHost/update/ForwardingCurl.h"
#include "OrvHost/update/PartialFiles.h"
#include "OrvHost/update/Retries.h"
#include "OrvHost/update/ServiceReport.h"

namespace OrvHost {

/// A download service for one catalog update that does not believe everything. It remembers what each header
/// request was told, and judges the body by it: a body of another length, or with another entity tag, is a
/// failed download, before anything is replaced. A web page in place of a catalog, of its header or of the
/// content index shows that this is no catalog service: every further request then fails at once, without
/// being made. Requests that failed in a way that may pass are made again, and a body that broke off goes on
/// where it broke.
///
/// Install it for the length of one run. The requests come from one thread; `report` may be called from any.
class ORVHOST_EXPORT CarefulCurl : public ForwardingCurl
{
public:
    /// The service, and how carefully it is asked.
    struct Settings
    {
        std::string url;          ///< the service's address as the user knows it, for the verdict
        std::string indexName;    ///< the name of the content index
        fileString partialFolder; ///< where broken bodies are kept; empty: nowhere
        Retries::Settings retries;
    };

    /// @param next makes the requests; not owned
    CarefulCurl(Curl& next, const Settings& settings);

    using ForwardingCurl::download_to_location;
    bool download_to_location(const std::string& url, const fileString& target,
                              const std::vector<std::string>& headerLines, void* context,
                              ProgressFunction progress, std::string& reason, int& errorNumber) override;
    bool getURLHeader(const std::string& url, const std::vector<std::string>& headerLines,
                      std::string& headerText, std::int64_t& status) override;
    bool browseURL(const std::string& url, const std::vector<std::string>& headerLines, std::string& body,
                   bool followRedirects, int timeoutSeconds) override;
    void prefetchHeaders(const std::vector<HeaderRequest>& requests) override;
    void prefetchDownloads(const std::vector<DownloadRequest>& requests) override;
    std::string urlAfterRedirects(const std::string& url) override;
    /// With the verdict as its reason, once there is one.
    Answer lastAnswer() override;

    /// The requests and answers so far, and how much of the current body has arrived.
    ServiceReport report() const;

private:
    bool isEnded() const;
    void judgeWebPage(const std::string& url);
    Answer answerTo(bool isAnswered, const std::string& headerText, std::int64_t status);
    bool mustTryAgain(Answer& answer, const Answer& next);
    std::string reasonOf(const Answer& answer) const;
    void noteRequest(RequestReport& report, bool isGood, const Answer& answer);
    CatalogReport& reportOf(const std::string& asked);
    void noteHeader(const std::string& url, const std::vector<std::string>& headerLines, const Answer& answer,
                    std::chrono::milliseconds time);
    bool fetch(const ResumableDownload& request, void* context, ProgressFunction progress,
               std::string& reason, int& errorNumber, Answer& answer);
    void beginBody(const std::string& asked);
    std::string problemOfBody(const std::string& url, const Answer& answer, const fileString& target);
    void noteBody(const std::string& url, const Answer& answer, const std::string& reason, std::int64_t bytes,
                  std::chrono::milliseconds time);

    Settings mSettings;
    Retries mRetries;
    PartialFiles mPartials;
    mutable std::mutex mMutex;
    ServiceReport mReport;                          ///< guarded by mMutex, as the next
    std::string mFetched;                           ///< the catalog whose body comes; empty for none
    std::atomic<std::int64_t> mReceived{0};         ///< bytes of that body
    std::map<std::string, std::string> mValidators; ///< catalog name to what a download is resumed with
};

} // namespace OrvHost
