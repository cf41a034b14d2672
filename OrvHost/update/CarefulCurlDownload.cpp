// Downloads bodies and compares them with the answers to their header requests.
#include "OrvHost/update/CarefulCurl.h"

#include <filesystem>
#include <iterator>
#include <limits>

#include <QLocale>

#include "OrvHost/history/CatalogAddress.h"
#include "OrvHost/update/ServiceAnswer.h"
#include "OrvLibrary/host/FileUtils.h"

namespace OrvHost {

namespace {

using Clock = std::chrono::steady_clock;

/// Makes `FileUtils::removePath` remove read-only files, too.
constexpr int kRemoveReadOnly = 1;
/// The transfer library's number for a senseless answer.
constexpr int kWeirdAnswer = 8;
/// And for a disk that takes no more.
constexpr int kWriteError = 23;

std::chrono::milliseconds since(Clock::time_point start)
{
    return std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - start);
}

/// The updater's progress function, and our counter of bytes.
struct WatchedProgress
{
    std::atomic<std::int64_t>& received;
    void* context;
    Curl::ProgressFunction next; ///< may be null
};

int watchProgress(void* context, double downloadTotal, double downloaded, double uploadTotal, double uploaded)
{
    const WatchedProgress& watched = *static_cast<WatchedProgress*>(context);
    watched.received = static_cast<std::int64_t>(downloaded);
    return watched.next ? watched.next(watched.context, downloadTotal, downloaded, uploadTotal, uploaded) : 0;
}

/// With commas between thousands in every locale, because the reasons are in English.
std::string grouped(std::int64_t number)
{
    return QLocale(QLocale::English).toString(static_cast<qlonglong>(number)).toStdString();
}

/// Rounded up, in units of 1000, as the download service says it.
std::string sizeText(std::int64_t bytes)
{
    const char* const units[] = {" bytes", " KB", " MB", " GB", " TB"};
    std::size_t unit = 0;
    for (; bytes >= 1000 && unit + 1 < std::size(units); ++unit)
        bytes = (bytes + 999) / 1000;
    return std::to_string(bytes) + units[unit];
}

/// Bytes that the disk of a file to be made has left; the most there can be when that is not known.
std::int64_t freeAt(const fileString& target)
{
    std::error_code error;
    const auto space = std::filesystem::space(target.parentPath().toNativeString(), error);
    constexpr std::uintmax_t kMost = std::numeric_limits<std::int64_t>::max();
    return static_cast<std::int64_t>(error ? kMost : std::min(space.available, kMost));
}

} // namespace

/// The downloads that leave the reserve free, all together. The others are refused in their turn, or find
/// room by then.
std::vector<Curl::DownloadRequest> CarefulCurl::fitting(const std::vector<DownloadRequest>& requests)
{
    mAhead.clear();
    if (mSettings.diskReserve == 0 || requests.empty())
        return requests;
    std::int64_t room = freeAt(requests.front().target) - mSettings.diskReserve;
    std::vector<DownloadRequest> fitting;
    for (const DownloadRequest& request : requests) {
        if (request.size > room)
            continue;
        room -= request.size;
        mAhead.insert(request.target);
        fitting.push_back(request);
    }
    return fitting;
}

/// @return why the disk takes no more; empty when there is room
std::string CarefulCurl::problemOfRoom(const ResumableDownload& request)
{
    if (mSettings.diskReserve == 0 || mAhead.count(request.target) != 0)
        return {};
    const std::lock_guard<std::mutex> lock(mMutex);
    const std::int64_t there =
        request.partial.empty() ? 0 : std::max<std::int64_t>(FileUtils::fileSize(request.partial), 0);
    const std::int64_t needed = reportOf(CatalogAddress::nameIn(request.url)).length.value_or(0) - there;
    const std::int64_t free = freeAt(request.target);
    if (needed <= free - mSettings.diskReserve)
        return {};
    return "disk full: " + sizeText(needed) + " needed, " + sizeText(free) + " free, " +
           sizeText(mSettings.diskReserve) + " kept free";
}

bool CarefulCurl::download_to_location(const std::string& url, const fileString& target,
                                       const std::vector<std::string>& headerLines, void* context,
                                       ProgressFunction progress, std::string& reason, int& errorNumber)
{
    if (isEnded()) {
        reason = report().verdict;
        errorNumber = kWeirdAnswer;
        return false;
    }
    const Clock::time_point start = Clock::now();
    const std::string asked = CatalogAddress::nameIn(url);
    ResumableDownload request{url, headerLines, target, {}, mValidators[asked]};
    if (!request.validator.empty() && !mSettings.partialFolder.empty())
        request.partial = mPartials.fileFor(url.substr(0, url.find('?')) + "?" + asked, request.validator);
    reason = problemOfRoom(request);
    if (!reason.empty()) {
        errorNumber = kWriteError;
        noteBody(url, {}, reason, 0, since(start));
        return false;
    }
    beginBody(asked);
    Answer answer;
    WatchedProgress watched{mReceived, context, progress};
    bool isFetched = fetch(request, &watched, watchProgress, reason, errorNumber, answer);
    std::int64_t bytes = 0;
    if (isFetched) {
        bytes = FileUtils::fileSize(target);
        reason = problemOfBody(url, answer, target);
        isFetched = reason.empty();
        if (!isFetched) {
            FileUtils::removePath(target, kRemoveReadOnly);
            errorNumber = kWeirdAnswer;
        }
    }
    noteBody(url, answer, isFetched ? std::string() : reason, bytes, since(start));
    return isFetched;
}

void CarefulCurl::beginBody(const std::string& asked)
{
    mReceived = 0;
    const std::lock_guard<std::mutex> lock(mMutex);
    mFetched = asked;
}

bool CarefulCurl::fetch(const ResumableDownload& request, void* context, ProgressFunction progress,
                        std::string& reason, int& errorNumber, Answer& answer)
{
    mRetries.begin();
    do {
        const bool isFetched =
            request.partial.empty()
                ? ForwardingCurl::download_to_location(request.url, request.target, request.headerLines,
                                                       context, progress, reason, errorNumber)
                : ForwardingCurl::downloadResumable(request, context, progress, reason, errorNumber);
        answer = ForwardingCurl::lastAnswer();
        if (isFetched)
            return true;
    } while (ServiceAnswer::isPassing(answer, errorNumber) &&
             mRetries.shouldTryAgain(ServiceAnswer::retryAfter(answer.headerText)));
    return false;
}

/// Compares a downloaded body with the answer to its header request.
/// @return why the body is refused; empty if it is not
std::string CarefulCurl::problemOfBody(const std::string& url, const Answer& answer, const fileString& target)
{
    if (ServiceAnswer::isWebPage(answer)) {
        judgeWebPage(url);
        return "a web page instead of a catalog";
    }
    const std::optional<std::string> tag = ServiceAnswer::tag(answer.headerText);
    const std::int64_t bytes = FileUtils::fileSize(target);
    const std::lock_guard<std::mutex> lock(mMutex);
    const CatalogReport& announced = reportOf(CatalogAddress::nameIn(url));
    if (announced.length && *announced.length != bytes)
        return "another version than announced: " + grouped(bytes) + " bytes instead of " +
               grouped(*announced.length);
    if (announced.tag && tag && *announced.tag != *tag)
        return "another version than announced: tag " + *tag + " instead of " + *announced.tag;
    return {};
}

void CarefulCurl::noteBody(const std::string& url, const Answer& answer, const std::string& reason,
                           std::int64_t bytes, std::chrono::milliseconds time)
{
    const bool isCancelled = mRetries.isCancelled();
    if (reason.empty())
        mRetries.succeeded();
    const std::lock_guard<std::mutex> lock(mMutex);
    mFetched.clear();
    CatalogReport& report = reportOf(CatalogAddress::nameIn(url));
    report.isDownloadTried = true;
    report.isDownloaded = reason.empty();
    report.bodyStatus = answer.status;
    report.bytes = report.isDownloaded ? bytes : 0;
    report.time += time;
    report.reason = isCancelled ? std::string() : reason;
}

} // namespace OrvHost
