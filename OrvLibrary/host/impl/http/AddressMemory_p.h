#pragma once

#include <chrono>
#include <deque>
#include <map>
#include <mutex>
#include <string>

#include "OrvLibrary/host/impl/http/HttpTransfer_p.h"

/// Remembers how each address ("host:port") behaves: whether it answers, how long that takes, and whether one
/// connection to it carries many requests. After some requests in a row without any answer an address is
/// closed for a while; after that time a single request without an answer closes it again. May be used from
/// any thread.
class AddressMemory
{
public:
    explicit AddressMemory(const HttpLimits& limits);

    /// Whether a request may be sent to `address` now.
    bool isOpen(const std::string& address);
    /// Why the last request to a closed address got no answer.
    std::string lastReason(const std::string& address);
    /// How long an answer takes: the shortest of the last few times. Negative when it is not known.
    std::chrono::microseconds latency(const std::string& address);
    /// Whether one connection carries many requests at once; false when it is not known.
    bool isMultiplexing(const std::string& address);

    /// Notes whether there was an answer, and what is to be learnt from it. The time of an answer that other
    /// requests may have delayed does not count; a cancelled request says nothing.
    void note(const std::string& address, const HttpAnswer& answer);
    /// Opens every address that was closed.
    void openAll();

private:
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
