// How it works: `perform` sends one request and loops until its transfer has finished. Each `step` lets the
// transfer library move all transfers of the thread, collects those it has ended, and lets the lists of
// announced requests start new ones. Between two steps `wait` sleeps until bytes arrive, for 10 ms at most.
// So everything that runs ahead moves on while a call waits, and needs no thread.
#include "OrvLibrary/host/impl/http/HttpConnections_p.h"

#include <algorithm>
#include <new>

#include "OrvLibrary/host/impl/http/CancelQuestion_p.h"

HttpConnections::HttpConnections()
{
    [[maybe_unused]] static const CURLcode once = curl_global_init(CURL_GLOBAL_DEFAULT);
    mSessions.reset(curl_share_init());
    mMulti.reset(curl_multi_init());
    if (!mSessions || !mMulti)
        throw std::bad_alloc();
    curl_multi_setopt(mMulti.get(), CURLMOPT_MAXCONNECTS, 100L); // idle ones that are kept
    curl_share_setopt(mSessions.get(), CURLSHOPT_SHARE, CURL_LOCK_DATA_SSL_SESSION);
}

HttpAnswer HttpConnections::perform(const HttpRequest& request, HttpBody& body)
{
    const Work busy(*this, true);
    for (AheadWork* const work : mAhead) {
        if (!work->makeWay())
            return HttpAnswer::cancelled();
    }
    const bool hadCompany = aheadCount() > 0;
    HttpTransfer transfer(*this, request, body);
    start(transfer);
    while (!transfer.finished()) {
        if (!step())
            transfer.finish(CURLE_OUT_OF_MEMORY);
        if (!transfer.finished() && CancelQuestion::isCancelled())
            transfer.cancel();
        if (!transfer.finished() && transfer.watch(HttpLimits::Clock::now()))
            wait();
    }
    HttpAnswer answer = transfer.answer();
    answer.hadCompany = hadCompany || aheadCount() > 0;
    return answer;
}

void HttpConnections::addAhead(AheadWork& work, std::size_t connectionLimit)
{
    mAhead.push_back(&work);
    curl_multi_setopt(mMulti.get(), CURLMOPT_MAX_HOST_CONNECTIONS, static_cast<long>(connectionLimit));
}

void HttpConnections::removeAhead(AheadWork& work)
{
    mAhead.erase(std::remove(mAhead.begin(), mAhead.end(), &work), mAhead.end());
}

std::size_t HttpConnections::aheadCount() const
{
    std::size_t count = 0;
    for (const AheadWork* const work : mAhead)
        count += work->running();
    return count;
}

void HttpConnections::stopAhead()
{
    for (AheadWork* const work : mAhead)
        work->stop();
}

void HttpConnections::start(HttpTransfer& transfer)
{
    curl_easy_setopt(transfer.handle(), CURLOPT_SHARE, mSessions.get());
    if (curl_multi_add_handle(mMulti.get(), transfer.handle()) != CURLM_OK)
        transfer.finish(CURLE_OUT_OF_MEMORY);
    mHasNew = true;
}

void HttpConnections::end(CURL* handle)
{
    curl_multi_remove_handle(mMulti.get(), handle);
    curl_easy_cleanup(handle);
}

bool HttpConnections::step()
{
    const bool isWell = move();
    // Send new requests at once: the caller may sync a file before the next step.
    return mHasNew ? move() && isWell : isWell;
}

bool HttpConnections::move()
{
    int running = 0;
    mHasNew = false;
    const bool isWell = curl_multi_perform(mMulti.get(), &running) == CURLM_OK;
    collectResults();
    for (AheadWork* const work : mAhead)
        work->advance();
    return isWell;
}

void HttpConnections::wait()
{
    curl_multi_poll(mMulti.get(), nullptr, 0, static_cast<int>(HttpLimits::kLongestSleep.count()), nullptr);
}

void HttpConnections::collectResults()
{
    int left = 0;
    while (const CURLMsg* message = curl_multi_info_read(mMulti.get(), &left)) {
        if (message->msg != CURLMSG_DONE)
            continue;
        char* transfer = nullptr;
        curl_easy_getinfo(message->easy_handle, CURLINFO_PRIVATE, &transfer);
        reinterpret_cast<HttpTransfer*>(transfer)->finish(message->data.result);
    }
}
