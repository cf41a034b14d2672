#pragma once

#include <atomic>
#include <map>
#include <mutex>
#include <set>
#include <string>
#include <vector>

#include "OrvHost/OrvHostExport.h"
#include "OrvHost/update/ForwardingCurl.h"
#include "OrvHost/update/PartialFiles.h"
#include "OrvHost/update/Retries.h"
#include "OrvHost/update/ServiceReport.h"

namespace OrvHost {

/// A download service for one update that checks what it gets. It remembers the answer to each header
/// request. A body with another length or entity tag is then a failed download, and nothing is replaced. If
/// it gets a web page instead of a catalog, a header or the content index, the address is not a catalog
/// service; all further requests then fail at once without being sent. Requests whose failure may pass are
/// repeated, and an interrupted download is continued.
///
/// Install it for one run. All requests come from one thread; `report` may be called from any thread.
class ORVHOST_EXPORT CarefulCurl : public ForwardingCurl
{
public:
    /// The service, and how to treat it.
    struct Settings
    {
        std::string url;          ///< the address as the user knows it, for messages
        std::string indexName;    ///< the file name of the content index
        fileString partialFolder; ///< folder for interrupted downloads; if empty, none are kept
        Retries::Settings retries;
        /// Bytes that downloads leave free on the disk; the next service may leave more.
        std::int64_t diskReserve = 0;
    };

    /// @param next sends the requests; not owned
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
    /// If the address is not a catalog service, the reason says so.
    Answer lastAnswer() override;

    /// All requests and answers so far, and how much of the current body has arrived.
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
    std::vector<DownloadRequest> fitting(const std::vector<DownloadRequest>& requests);
    std::string problemOfRoom(const ResumableDownload& request);
    void beginBody(const std::string& asked);
    std::string problemOfBody(const std::string& url, const Answer& answer, const fileString& target);
    void noteBody(const std::string& url, const Answer& answer, const std::string& reason, std::int64_t bytes,
                  std::chrono::milliseconds time);

    Settings mSettings;
    Retries mRetries;
    PartialFiles mPartials;
    std::set<fileString> mAhead; ///< targets that were found to have room, and are being fetched
    mutable std::mutex mMutex;
    ServiceReport mReport;                  ///< guarded by mMutex, like the next one
    std::string mFetched;                   ///< the catalog being downloaded; empty for none
    std::atomic<std::int64_t> mReceived{0}; ///< bytes of its body
    std::map<std::string, std::string>
        mValidators; ///< by catalog name: identifies the version, to continue a download
};

} // namespace OrvHost
