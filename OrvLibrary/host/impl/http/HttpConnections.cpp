#include "OrvLibrary/host/impl/http/HttpConnections_p.h"

#include <algorithm>
#include <csignal>
#include <ctime>
#include <mutex>
#include <new>
#include <thread>

#include "OrvLibrary/host/impl/http/CancelQuestion_p.h"
#include "OrvLibrary/host/impl/http/DownloadPrefetch_p.h"
#include "OrvLibrary/host/impl/http/HeaderPrefetch_p.h"
#include "OrvLibrary/host/impl/http/HttpAddress_p.h"
#include "OrvLibrary/host/impl/http/RateLimit_p.h"

namespace {

/// The longest sleep between two looks at a transfer. The library sleeps up to 200 ms in
/// places where data is already there; and the progress function must be called in time.
constexpr std::chrono::milliseconds kLongestSleep{10};
constexpr std::size_t kIdleHandles = 100;
/// Idle connections that are kept.
constexpr long kKeptConnections = 100;
constexpr std::size_t kLatencies = 3;

void initialiseLibrary()
{
    static std::once_flag once;
    std::call_once(once, [] { curl_global_init(CURL_GLOBAL_DEFAULT); });
}

/// Done at the end of a block, also when an exception ends it.
template <class Action>
struct AtEnd
{
    ~AtEnd() { action(); }
    Action action;
};
template <class Action>
AtEnd(Action) -> AtEnd<Action>;

} // namespace

BrokenPipeBlock::BrokenPipeBlock()
{
    sigemptyset(&mSignals);
    sigaddset(&mSignals, SIGPIPE);
    sigset_t pending;
    sigpending(&pending);
    mWasPending = sigismember(&pending, SIGPIPE) == 1;
    pthread_sigmask(SIG_BLOCK, &mSignals, &mFormer);
}

BrokenPipeBlock::~BrokenPipeBlock()
{
    const timespec noWait{};
    if (!mWasPending)
        sigtimedwait(&mSignals, nullptr, &noWait);
    pthread_sigmask(SIG_SETMASK, &mFormer, nullptr);
}

HttpConnections::HttpConnections()
{
    initialiseLibrary();
    mIdle.reserve(kIdleHandles); // so that giving back a handle needs no memory
    mMulti = curl_multi_init();
    if (!mMulti)
        throw std::bad_alloc();
    curl_multi_setopt(mMulti, CURLMOPT_MAXCONNECTS, kKeptConnections);
}

HttpConnections::~HttpConnections()
{
    const BrokenPipeBlock block; // closing a TLS connection writes to it
    mPrefetch.reset();
    mDownloads.reset();
    for (CURL* handle : mIdle)
        curl_easy_cleanup(handle);
    curl_multi_cleanup(mMulti);
}

HttpConnections& HttpConnections::ofThisThread()
{
    static thread_local HttpConnections connections;
    return connections;
}

CURL* HttpConnections::acquire()
{
    if (mIdle.empty()) {
        CURL* handle = curl_easy_init();
        if (!handle)
            throw std::bad_alloc();
        return handle;
    }
    CURL* handle = mIdle.back();
    mIdle.pop_back();
    return handle;
}

void HttpConnections::release(CURL* handle) noexcept
{
    curl_easy_reset(handle);
    if (mIdle.size() < kIdleHandles)
        mIdle.push_back(handle);
    else
        curl_easy_cleanup(handle);
}

void HttpConnections::setPrefetch(std::unique_ptr<HeaderPrefetch> prefetch)
{
    const BrokenPipeBlock block;
    mPrefetch = std::move(prefetch);
    if (mPrefetch)
        mPrefetch->advance();
}

void HttpConnections::setDownloads(std::unique_ptr<DownloadPrefetch> downloads)
{
    const BrokenPipeBlock block;
    mDownloads = std::move(downloads);
    if (mDownloads)
        mDownloads->advance();
}

std::chrono::microseconds HttpConnections::latency(const std::string& address) const
{
    const auto found = mExperiences.find(address);
    if (found == mExperiences.end() || found->second.latencies.empty())
        return std::chrono::microseconds(-1);
    const auto& times = found->second.latencies;
    return *std::min_element(times.begin(), times.end());
}

bool HttpConnections::isMultiplexing(const std::string& address) const
{
    const auto found = mExperiences.find(address);
    return found != mExperiences.end() && found->second.isMultiplexing;
}

bool HttpConnections::mayBeUntaken(const HttpTransfer& transfer, const std::string& address) const
{
    // One that is to share a connection may have to wait for its turn.
    return !transfer.isAnswered() &&
           (transfer.hasNewConnection() || (!transfer.isConnected() && !isMultiplexing(address)));
}

void HttpConnections::noteAnswer(const HttpTransfer& transfer) noexcept
try {
    curl_off_t connected = 0;
    curl_off_t sent = 0;
    curl_off_t answered = 0;
    long version = 0;
    char* url = nullptr;
    curl_easy_getinfo(transfer.handle(), CURLINFO_CONNECT_TIME_T, &connected);
    curl_easy_getinfo(transfer.handle(), CURLINFO_PRETRANSFER_TIME_T, &sent);
    curl_easy_getinfo(transfer.handle(), CURLINFO_STARTTRANSFER_TIME_T, &answered);
    if (curl_easy_getinfo(transfer.handle(), CURLINFO_EFFECTIVE_URL, &url) != CURLE_OK || !url)
        return;
    curl_easy_getinfo(transfer.handle(), CURLINFO_HTTP_VERSION, &version);
    Experience& experience = mExperiences[HttpAddress::hostAndPort(url)];
    experience.isMultiplexing = version == CURL_HTTP_VERSION_2_0;
    auto& times = experience.latencies;
    // Over a link that delays what passes, connecting can be quick and the answer late.
    times.emplace_back(std::max(connected, answered - sent));
    if (times.size() > kLatencies)
        times.pop_front();
} catch (const std::bad_alloc&) {
}

HttpAnswer HttpConnections::perform(const HttpRequest& request, HttpBody& body, const HttpLimits& limits,
                                    TimePoint deadline)
{
    const BrokenPipeBlock block;
    const Work work(*this);
    makeRoom();
    const bool hadCompany = hasCompany();
    CURL* const handle = acquire();
    const AtEnd giveBack{[&] { release(handle); }};
    HttpTransfer transfer(handle, request, body, limits, deadline);
    run(transfer);
    if (transfer.isAnswered())
        noteAnswer(transfer);
    HttpAnswer answer = transfer.answer();
    answer.hadCompany = hadCompany || hasCompany();
    return answer;
}

bool HttpConnections::hasCompany() const
{
    return (mPrefetch && mPrefetch->isRunning()) || (mDownloads && mDownloads->isRunning());
}

void HttpConnections::makeRoom()
{
    if (mPrefetch)
        mPrefetch->makeRoom();
    if (mDownloads)
        mDownloads->makeRoom();
}

void HttpConnections::stopAhead()
{
    if (mPrefetch)
        mPrefetch->stop();
    if (mDownloads)
        mDownloads->stop();
}

void HttpConnections::run(HttpTransfer& transfer)
{
    start(transfer);
    // Whatever happens, the transfer library must not hold a transfer that is gone.
    const AtEnd end{[&] { stop(transfer); }};
    while (!transfer.finished()) {
        if (!step())
            transfer.finish(CURLE_OUT_OF_MEMORY);
        if (!transfer.finished() && CancelQuestion::isCancelled())
            transfer.cancel();
        if (!transfer.finished() && transfer.watch(HttpLimits::Clock::now()))
            wait();
    }
}

void HttpConnections::start(HttpTransfer& transfer)
{
    if (curl_multi_add_handle(mMulti, transfer.handle()) != CURLM_OK)
        transfer.finish(CURLE_OUT_OF_MEMORY);
}

void HttpConnections::stop(HttpTransfer& transfer)
{
    curl_multi_remove_handle(mMulti, transfer.handle());
}

bool HttpConnections::send()
{
    // What is not read here stays with the system, which slows the server down.
    if (RateLimit::ofProcess().pause(HttpLimits::Clock::now()).count() > 0)
        return true;
    int running = 0;
    return curl_multi_perform(mMulti, &running) == CURLM_OK;
}

bool HttpConnections::step()
{
    const bool isWell = send();
    collectResults();
    if (mPrefetch)
        mPrefetch->advance();
    if (mDownloads)
        mDownloads->advance();
    return isWell;
}

void HttpConnections::wait()
{
    const auto pause = RateLimit::ofProcess().pause(HttpLimits::Clock::now());
    if (pause.count() > 0)
        std::this_thread::sleep_for(std::min<std::chrono::nanoseconds>(pause, kLongestSleep));
    else
        curl_multi_poll(mMulti, nullptr, 0, static_cast<int>(kLongestSleep.count()), nullptr);
}

void HttpConnections::collectResults()
{
    int left = 0;
    while (const CURLMsg* message = curl_multi_info_read(mMulti, &left)) {
        if (message->msg != CURLMSG_DONE)
            continue;
        char* transfer = nullptr;
        curl_easy_getinfo(message->easy_handle, CURLINFO_PRIVATE, &transfer);
        reinterpret_cast<HttpTransfer*>(transfer)->finish(message->data.result);
    }
}
