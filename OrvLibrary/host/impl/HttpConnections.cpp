#include "OrvLibrary/host/impl/HttpConnections_p.h"

#include <csignal>
#include <ctime>
#include <mutex>
#include <new>

namespace {

/// The longest sleep between two looks at a transfer, in milliseconds. The library sleeps up to 200 ms in
/// places where data is already there; and the progress function must be called in time.
constexpr int kLongestSleep = 10;
constexpr std::size_t kIdleHandles = 4;

void initialiseLibrary()
{
    static std::once_flag once;
    std::call_once(once, [] { curl_global_init(CURL_GLOBAL_DEFAULT); });
}

/// Keeps a write on a closed TLS connection from ending the process, without touching the host's handlers.
class BrokenPipeBlock
{
public:
    BrokenPipeBlock()
    {
        sigemptyset(&mSignals);
        sigaddset(&mSignals, SIGPIPE);
        sigset_t pending;
        sigpending(&pending);
        mWasPending = sigismember(&pending, SIGPIPE) == 1;
        pthread_sigmask(SIG_BLOCK, &mSignals, &mFormer);
    }
    ~BrokenPipeBlock()
    {
        const timespec noWait{};
        if (!mWasPending)
            sigtimedwait(&mSignals, nullptr, &noWait);
        pthread_sigmask(SIG_SETMASK, &mFormer, nullptr);
    }
    BrokenPipeBlock(const BrokenPipeBlock&) = delete;
    BrokenPipeBlock& operator=(const BrokenPipeBlock&) = delete;

private:
    sigset_t mSignals;
    sigset_t mFormer;
    bool mWasPending = false;
};

} // namespace

HttpConnections::HttpConnections()
{
    initialiseLibrary();
    mMulti = curl_multi_init();
    if (!mMulti)
        throw std::bad_alloc();
}

HttpConnections::~HttpConnections()
{
    for (CURL* handle : mIdle)
        curl_easy_cleanup(handle);
    const BrokenPipeBlock block; // closing a TLS connection writes to it
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

void HttpConnections::release(CURL* handle)
{
    if (mIdle.size() >= kIdleHandles) {
        curl_easy_cleanup(handle);
        return;
    }
    curl_easy_reset(handle);
    mIdle.push_back(handle);
}

HttpAnswer HttpConnections::perform(const HttpRequest& request, HttpBody& body, const HttpLimits& limits,
                                    HttpLimits::Clock::time_point deadline)
{
    const BrokenPipeBlock block;
    CURL* handle = acquire();
    mBusy = true;
    HttpTransfer transfer(handle, request, body, limits, deadline);
    run(transfer);
    mBusy = false;
    release(handle);
    return transfer.answer();
}

void HttpConnections::run(HttpTransfer& transfer)
{
    if (curl_multi_add_handle(mMulti, transfer.handle()) != CURLM_OK) {
        transfer.finish(CURLE_OUT_OF_MEMORY);
        return;
    }
    while (!transfer.finished()) {
        int running = 0;
        if (curl_multi_perform(mMulti, &running) != CURLM_OK)
            transfer.finish(CURLE_OUT_OF_MEMORY);
        collectResults();
        if (!transfer.finished() && transfer.watch(HttpLimits::Clock::now()))
            curl_multi_poll(mMulti, nullptr, 0, kLongestSleep, nullptr);
    }
    curl_multi_remove_handle(mMulti, transfer.handle());
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
