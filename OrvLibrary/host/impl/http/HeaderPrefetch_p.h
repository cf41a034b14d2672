#pragma once

#include <cstddef>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "OrvLibrary/host/impl/http/HttpConnections_p.h"

/// Header requests that are sent ahead of the calls that ask for their answers. They move on whenever their
/// thread waits for any transfer. Redirects are not followed: who takes the answer does that, and keeps the
/// account of addresses that do not answer too, so that all of it happens in the order of the calls.
///
/// How many are sent at once depends on how long the address takes to answer. To one that answers at once it
/// does not pay to open more than one connection: it sees one request at a time, in the order of the calls
/// and of what they lead to. One that carries many requests at once (HTTP/2) is enough for a short list or a
/// server that is not far; else up to eight are opened together. A server that answers no more while
/// connections wait for it has fewer workers than it has connections, or takes no more of them: then what
/// waits is asked again, on the connections that were answered.
class HeaderPrefetch
{
public:
    using TimePoint = HttpLimits::Clock::time_point;

    /// @param connectionLimit how many may be under way at once
    HeaderPrefetch(HttpConnections& connections, const HttpLimits& limits,
                   const std::vector<HttpRequest>& requests, int connectionLimit);
    /// Ends what is under way.
    ~HeaderPrefetch();
    HeaderPrefetch(const HeaderPrefetch&) = delete;
    HeaderPrefetch& operator=(const HeaderPrefetch&) = delete;

    /// The answer to a request of the list, waited for if need be; each is handed out once.
    /// @return false when it is not, or no longer, in the list, or when its answer was lost
    bool take(const HttpRequest& request, HttpAnswer& answer);
    /// Starts and ends what is due. Called at each step of the connections.
    void advance();
    /// Sends nothing more ahead: each request is sent when its turn has come.
    void stop() { mIsStopped = true; }
    /// Called before a request is sent in turn: after `stop`, what is under way ends first, within a second,
    /// or is given up.
    void makeRoom();
    bool isRunning() const { return !mRunning.empty(); }

private:
    enum class State
    {
        Waiting,
        Running,
        Done
    };
    struct Entry
    {
        HttpRequest request;
        State state = State::Waiting;
        std::unique_ptr<HttpBody> body;
        std::unique_ptr<HttpTransfer> transfer;
        TimePoint started{};
        /// When it was sent first; the time for an answer counts from here.
        TimePoint startedFirst{};
        bool repeated = false;
        /// No other was under way at the same time: nothing of ours can keep the server from it.
        bool isAlone = false;
        /// Sent when its turn had come, with no other under way.
        bool isInTurn = false;
        /// Sent on a connection of its own that does not stand yet.
        bool isOpening = false;
        HttpAnswer answer;
        /// There was no memory for the answer.
        bool isLost = false;
    };

    void start(Entry& entry);
    void finish(Entry& entry);
    void end(Entry& entry);
    void startWaiting();
    void repeatStalled(TimePoint now);
    bool isStalled(const Entry& entry, TimePoint now) const;
    std::size_t width(const Entry& next) const;
    bool mayOpen(const Entry& next) const;
    void noteOpened(Entry& entry);
    void noteServed(const HttpTransfer& transfer) noexcept;
    void countConnections();
    HttpLimits::Milliseconds longestWait(const Entry& entry) const;
    std::chrono::microseconds stallTime(const Entry& entry) const;

    HttpConnections& mConnections;
    const HttpLimits mLimits;
    const std::size_t mConnectionLimit;
    std::vector<Entry> mEntries;
    /// Entries that were not taken yet, by what identifies a request.
    std::multimap<std::string, std::size_t> mByKey;
    std::vector<std::size_t> mRunning;
    /// Before this one none is waiting.
    std::size_t mNext = 0;
    /// Connections that carry many requests at once: those that stand, with the one that was there before,
    /// those that are being opened, and all that were opened for this list.
    std::size_t mReady = 1;
    std::size_t mOpening = 0;
    std::size_t mOpened = 0;
    bool mIsStopped = false;
    TimePoint mLastAnswer{};
    /// The server answered no more while connections waited for it.
    bool mHasStalled = false;
    /// Connections that were answered, by our port, and whether one was answered again.
    std::set<long> mServed;
    bool mKeepsConnections = false;
    /// The answer that came last is unlikely to make the caller ask for anything but the next header.
    bool mLastWord = true;
};
