// This file has the requests that only ask. CarefulCurlDownload.cpp has the downloads.
//
// How it works: each operation sends its request through `ForwardingCurl`. While the failure may pass and
// `Retries` agrees, it sends the request again. Then it judges the final answer and adds it to the report.
// The answer comes from `lastAnswer`; if the service below does not support that, from the operation's
// results. If the verdict is "no catalog service", the report says so, and `isEnded` prevents all further
// requests.
#include "OrvHost/update/CarefulCurl.h"

#include <algorithm>
#include <sstream>

#include "OrvHost/history/CatalogAddress.h"
#include "OrvHost/update/ServiceAnswer.h"

namespace OrvHost {

namespace {

using Clock = std::chrono::steady_clock;

constexpr std::int64_t kOk = 200;
constexpr std::int64_t kFirstErrorStatus = 400;
constexpr std::int64_t kUnchanged = 304;
const char* const kWebPage = "a web page instead of an answer";

std::chrono::milliseconds since(Clock::time_point start)
{
    return std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - start);
}

std::set<std::string> linesOf(const std::string& index)
{
    std::set<std::string> lines;
    std::istringstream stream(index);
    for (std::string line; std::getline(stream, line);) {
        line.erase(std::remove(line.begin(), line.end(), '\r'), line.end());
        if (!line.empty())
            lines.insert(line);
    }
    return lines;
}

} // namespace

CarefulCurl::CarefulCurl(Curl& next, const Settings& settings)
    : ForwardingCurl(next), mSettings(settings), mRetries(settings.retries), mPartials(settings.partialFolder)
{
}

ServiceReport CarefulCurl::report() const
{
    const std::lock_guard<std::mutex> lock(mMutex);
    ServiceReport report = mReport;
    for (CatalogReport& catalog : report.catalogs)
        catalog.received = catalog.asked == mFetched ? mReceived.load() : 0;
    return report;
}

bool CarefulCurl::isEnded() const
{
    const std::lock_guard<std::mutex> lock(mMutex);
    return !mReport.verdict.empty();
}

/// Decides that this is no catalog service. Requests sent ahead are dropped.
void CarefulCurl::judgeWebPage(const std::string& url)
{
    {
        const std::lock_guard<std::mutex> lock(mMutex);
        const std::string address = mSettings.url.empty() ? url.substr(0, url.find('?')) : mSettings.url;
        mReport.verdict = address + " answers with web pages (a login page?), not as a catalog service";
    }
    ForwardingCurl::prefetchHeaders({});
    ForwardingCurl::prefetchDownloads({});
}

Curl::Answer CarefulCurl::lastAnswer()
{
    Answer answer = ForwardingCurl::lastAnswer();
    const std::lock_guard<std::mutex> lock(mMutex);
    if (!mReport.verdict.empty())
        answer.reason = mReport.verdict;
    return answer;
}

/// The last answer. If the service below does not know it, made from the operation's results.
Curl::Answer CarefulCurl::answerTo(bool isAnswered, const std::string& headerText, std::int64_t status)
{
    Answer answer = ForwardingCurl::lastAnswer();
    if (isAnswered && answer.status == 0) {
        answer.status = status;
        answer.headerText = headerText;
    }
    return answer;
}

/// Takes over the answer of one more try, and waits if another try makes sense. After some requests without
/// an answer, the download service itself closes the address; its reason then says less than the answer
/// before, which is kept.
bool CarefulCurl::mustTryAgain(Answer& answer, const Answer& next)
{
    if (!answer.reason.empty() && ServiceAnswer::isLeftAlone(next))
        return false;
    answer = next;
    return ServiceAnswer::isPassing(answer) &&
           mRetries.shouldTryAgain(ServiceAnswer::retryAfter(answer.headerText));
}

/// The reason of a failed request, for people. Empty after a cancel, because that is not a failure.
std::string CarefulCurl::reasonOf(const Answer& answer) const
{
    if (mRetries.isCancelled())
        return {};
    if (answer.status >= kFirstErrorStatus)
        return "HTTP " + std::to_string(answer.status);
    if (!answer.reason.empty())
        return answer.reason;
    return answer.status == 0 ? "no answer" : "HTTP " + std::to_string(answer.status);
}

void CarefulCurl::noteRequest(RequestReport& report, bool isGood, const Answer& answer)
{
    if (isGood)
        mRetries.succeeded();
    const std::string reason = isGood ? std::string() : reasonOf(answer);
    const std::lock_guard<std::mutex> lock(mMutex);
    report = {true, isGood, answer.status, reason};
}

std::string CarefulCurl::urlAfterRedirects(const std::string& url)
{
    if (isEnded())
        return {};
    std::string endpoint;
    Answer answer;
    mRetries.begin();
    do {
        endpoint = ForwardingCurl::urlAfterRedirects(url);
    } while (mustTryAgain(answer, answerTo(!endpoint.empty(), {}, 0)));
    if (ServiceAnswer::isWebPage(answer)) {
        judgeWebPage(url);
        answer.reason = kWebPage;
        endpoint.clear();
    }
    // An earlier failure stays in the report: because of it, the index was not requested.
    if (!mReport.endpoint.isAsked || mReport.endpoint.isGood)
        noteRequest(mReport.endpoint, !endpoint.empty(), answer);
    return endpoint;
}

bool CarefulCurl::browseURL(const std::string& url, const std::vector<std::string>& headerLines,
                            std::string& body, bool followRedirects, int timeoutSeconds)
{
    if (isEnded())
        return false;
    const bool isIndex = CatalogAddress::nameIn(url) == mSettings.indexName;
    bool isRead = false;
    Answer answer;
    mRetries.begin();
    do {
        isRead = ForwardingCurl::browseURL(url, headerLines, body, followRedirects, timeoutSeconds);
    } while (isIndex && mustTryAgain(answer, answerTo(isRead, {}, kOk)));
    if (!isIndex)
        return isRead; // an error page, which may be a web page
    if (isRead && (ServiceAnswer::isWebPage(answer) || ServiceAnswer::isMarkup(body))) {
        judgeWebPage(url);
        answer.reason = kWebPage;
        isRead = false;
    }
    noteRequest(mReport.index, isRead, answer);
    const std::lock_guard<std::mutex> lock(mMutex);
    mReport.indexNames = isRead ? linesOf(body) : std::set<std::string>();
    return isRead;
}

void CarefulCurl::prefetchHeaders(const std::vector<HeaderRequest>& requests)
{
    if (!isEnded())
        ForwardingCurl::prefetchHeaders(requests);
}

void CarefulCurl::prefetchDownloads(const std::vector<DownloadRequest>& requests)
{
    if (!isEnded())
        ForwardingCurl::prefetchDownloads(fitting(requests));
}

bool CarefulCurl::getURLHeader(const std::string& url, const std::vector<std::string>& headerLines,
                               std::string& headerText, std::int64_t& status)
{
    if (isEnded())
        return false;
    const Clock::time_point start = Clock::now();
    bool isAnswered = false;
    Answer answer;
    mRetries.begin();
    do {
        isAnswered = ForwardingCurl::getURLHeader(url, headerLines, headerText, status);
    } while (mustTryAgain(answer, answerTo(isAnswered, headerText, status)));
    const bool isPage = ServiceAnswer::isWebPage(answer);
    if (isPage) {
        judgeWebPage(url);
        answer.reason = kWebPage;
    }
    noteHeader(url, headerLines, answer, since(start));
    return isAnswered && !isPage;
}

/// The report on a catalog, made if there is none. Call it with the lock held.
CatalogReport& CarefulCurl::reportOf(const std::string& asked)
{
    for (CatalogReport& report : mReport.catalogs) {
        if (report.asked == asked)
            return report;
    }
    mReport.catalogs.emplace_back();
    mReport.catalogs.back().asked = asked;
    return mReport.catalogs.back();
}

void CarefulCurl::noteHeader(const std::string& url, const std::vector<std::string>& headerLines,
                             const Answer& answer, std::chrono::milliseconds time)
{
    const bool isGood = (answer.status == kOk || answer.status == kUnchanged) && answer.reason.empty();
    if (isGood)
        mRetries.succeeded();
    const std::string reason = isGood ? std::string() : reasonOf(answer);
    const std::string asked = CatalogAddress::nameIn(url);
    mValidators[asked] = ServiceAnswer::validator(answer.headerText);
    const std::lock_guard<std::mutex> lock(mMutex);
    CatalogReport& report = reportOf(asked);
    report.sentTag = ServiceAnswer::sentTag(headerLines);
    report.status = answer.status;
    report.tag = ServiceAnswer::tag(answer.headerText);
    report.length = ServiceAnswer::length(answer.headerText);
    report.time += time;
    report.reason = reason;
}

} // namespace OrvHost
