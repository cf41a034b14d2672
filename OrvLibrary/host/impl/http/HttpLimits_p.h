#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>

#include "OrvLibrary/host/impl/files/SizeLimit_p.h"

/// The limits of the download service. Tests use their own, with times short enough to wait for.
struct HttpLimits
{
    using Clock = std::chrono::steady_clock;
    using Milliseconds = std::chrono::milliseconds;

    /// The longest sleep between two steps of a transfer, and between two cancel questions. It is short
    /// because the transfer library at times sleeps up to 200 ms although data has arrived.
    static constexpr Milliseconds kLongestSleep{10};

    Milliseconds connectTimeout{30'000};
    /// For header requests, pages and redirect chains, from the first connection to the last byte.
    Milliseconds totalTimeout{60'000};
    /// For files without a progress function: the transfer ends if its speed stays below `lowestSpeed` for
    /// this time.
    Milliseconds slowTime{30'000};
    /// In bytes per second.
    std::int64_t lowestSpeed = 1;

    int redirects = 10;
    std::size_t headerBytes = 300 * 1024;
    std::int64_t pageBytes = 16 * 1024 * 1024;
    /// How much of an unwanted body is read, so that its connection can be used again.
    std::int64_t errorPageBytes = 64 * 1024;
    std::int64_t fileBytes = 16LL * 1024 * 1024 * 1024;
    /// Free space that a download must leave on the disk.
    host::SpareSpace spare;

    std::int64_t progressStep = 4096;
    /// If no byte arrives for `progressSilence`, the progress function is called every `progressInterval`.
    Milliseconds progressSilence{1'000};
    Milliseconds progressInterval{100};

    /// After this many requests in a row without any answer, an address is closed for `refusalTime`.
    int unansweredRequests = 3;
    Milliseconds refusalTime{60'000};
    /// Requests ahead wait this many times as long as the rules say for a silent service. Tests raise it,
    /// because a busy machine is silent, too.
    int aheadPatience = 1;

    /// The clock for closed addresses; tests replace it. Transfers always use the steady clock.
    std::function<Clock::time_point()> now = Clock::now;
};
