#pragma once

#include <chrono>
#include <deque>
#include <map>
#include <mutex>
#include <string>

#include "OrvLibrary/host/impl/http/HttpTransfer_p.h"

/// Remembers how each address ("host:port") behaves: whether it answers, how long an answer takes, and
/// whether one connection to it carries many requests (HTTP/2).
///
/// After `HttpLimits::unansweredRequests` requests in a row without any answer, the address is closed for
/// `HttpLimits::refusalTime`: requests to it fail at once. After that time requests are sent again, and one
/// more without an answer closes the address again. May be used from any thread.
class AddressMemory
{
public:
    explicit AddressMemory(const HttpLimits& limits);

    /// The knowledge about one address.
    struct Known
    {
        /// Whether a request may be sent to it now.
        bool isOpen = true;
        /// Why the last request got no answer.
        std::string lastReason;
        /// How long an answer takes: the shortest of the last few times. Negative while nothing is known.
        std::chrono::microseconds latency{-1};
        /// Whether one connection carries many requests at once. False while nothing is known.
        bool isMultiplexing = false;
    };
    Known known(const std::string& address);

    /// Learns from one answer, or from its absence. If other requests ran at the same time, they may have
    /// delayed the answer, so its time is not counted. A cancelled request teaches nothing.
    void note(const std::string& address, const HttpAnswer& answer);
    /// Opens every address that was closed.
    void openAll();

private:
    /// The number of answer times that are kept for each address.
    static constexpr std::size_t kLatencies = 3;
    struct Record
    {
        int unanswered = 0; ///< requests in a row
        std::string reason;
        HttpLimits::Clock::time_point closedUntil{};
        std::deque<std::chrono::microseconds> latencies;
        bool isMultiplexing = false;
    };

    const HttpLimits mLimits;
    std::mutex mMutex;
    std::map<std::string, Record> mRecords;
};
