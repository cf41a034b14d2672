#pragma once

#include <map>
#include <mutex>
#include <string>

#include "OrvLibrary/host/impl/http/HttpLimits_p.h"

/// Remembers the addresses ("host:port") that do not answer. After some requests in a row without any answer
/// an address is closed for a while; then one more request without an answer closes it again. May be used
/// from any thread.
class AddressGuard
{
public:
    explicit AddressGuard(const HttpLimits& limits);

    /// Whether a request may be sent to `address` now.
    bool isOpen(const std::string& address);
    void answered(const std::string& address);
    /// @param reason why there was no answer
    void unanswered(const std::string& address, const std::string& reason = {});
    /// Why the last request to a closed address got no answer.
    std::string lastReason(const std::string& address);
    /// Forgets everything.
    void reset();

private:
    struct Silence
    {
        int requests = 0;
        std::string reason;
        HttpLimits::Clock::time_point closedUntil{};
    };

    const HttpLimits mLimits;
    std::mutex mMutex;
    std::map<std::string, Silence> mSilent;
};
