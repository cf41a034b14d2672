#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>

/// The bounds of the download service. The service has one set of them. Tests make other sets, with times
/// that are short enough to wait for.
struct HttpLimits
{
    using Clock = std::chrono::steady_clock;
    using Milliseconds = std::chrono::milliseconds;

    Milliseconds connectTimeout{30'000};
    /// Header requests, pages and redirect chains, from the first connection to the last byte.
    Milliseconds totalTimeout{60'000};
    /// Files without a progress function: a stretch of this length below `lowestSpeed` ends the transfer.
    Milliseconds slowTime{30'000};
    /// Bytes per second.
    std::int64_t lowestSpeed = 1;

    int redirects = 10;
    std::size_t headerBytes = 300 * 1024;
    std::int64_t pageBytes = 16 * 1024 * 1024;
    /// So much is also read of a body that is not kept, so that its connection can be used again.
    std::int64_t errorPageBytes = 64 * 1024;
    std::int64_t fileBytes = 16LL * 1024 * 1024 * 1024;
    /// A file leaves free on its disk the smaller of this many bytes and one part in `spareShare` of the
    /// file system.
    std::int64_t spareBytes = 256LL * 1024 * 1024;
    std::int64_t spareShare = 20;
    /// Bytes that a body fetched ahead leaves free as well, for the bodies that arrive beside it.
    std::int64_t spareForOthers = 0;

    std::int64_t progressStep = 4096;
    /// Without a byte for `progressSilence`, the progress function is called every `progressInterval`.
    Milliseconds progressSilence{1'000};
    Milliseconds progressInterval{100};

    /// So many requests in a row without any answer close an address for `refusalTime`.
    int unansweredRequests = 3;
    Milliseconds refusalTime{60'000};

    /// The clock for the refusal of addresses. Transfers use the steady clock.
    std::function<Clock::time_point()> now = Clock::now;
};
