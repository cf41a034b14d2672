#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>

#include "OrvLibrary/host/impl/files/FileHandle_p.h"
#include "OrvLibrary/host/impl/http/AddressMemory_p.h"

/// Decides how many requests are sent ahead of their calls. All numbers and rules for this are here. Nothing
/// in this class knows a server, so a table of cases can test it.
///
/// The rules:
/// - A service that is near, that did not answer, or of which nothing is known, gets one request at a time.
/// - A distant service gets as many requests at once as the host allows connections. While a request is made
///   in its turn, one connection is left to it. If the host allows only one, nothing is sent ahead.
/// - Over HTTP/2 a hundred downloads run at once, on one connection, or 800 header requests, for which the
///   transfer library opens further connections, up to the host's limit.
/// - A quarter of the process's descriptors is left for other files, so that they can be opened as if nothing
///   was sent ahead.
/// - After the first sign of trouble, `AheadList` sends one request at a time.
struct AheadPolicy
{
    using Microseconds = std::chrono::microseconds;

    /// A service that answers faster than this is near: sending ahead would gain little.
    static constexpr Microseconds kNear{5'000};
    /// Downloads over HTTP/2 at once: as many as one connection carries. Most servers allow a hundred.
    static constexpr std::size_t kStreams = 100;
    /// Header requests over HTTP/2 at once.
    static constexpr std::size_t kHeaderStreams = 800;

    /// With fewer downloads than this, nothing is fetched ahead.
    static constexpr std::size_t kFewestBodies = 4;
    /// The largest number of bodies fetched ahead, arriving or complete. Each keeps a file open.
    static constexpr std::size_t kMostBodies = 128;
    /// The largest sum of their announced sizes. A body larger than this is never fetched ahead.
    static constexpr std::int64_t kMostBytes = 64'000'000;
    /// At most `kMostLarge` bodies larger than `kLarge` arrive at the same time.
    static constexpr std::int64_t kLarge = 8'000'000;
    static constexpr std::size_t kMostLarge = 2;

    /// A header request sent ahead fails if it has no answer after this time. Its call then sends it again.
    static constexpr std::chrono::seconds kLongestWait{10};
    /// A request that must run alone waits at most this long for the others to end.
    static constexpr std::chrono::seconds kLongestHold{1};

    /// The downloads that are fetched ahead at the moment.
    struct Load
    {
        std::size_t bodies = 0; ///< arriving or complete
        std::int64_t bytes = 0; ///< the sum of their announced sizes
        std::size_t largeRunning = 0;
    };
    /// The largest numbers for one list of requests.
    struct Allowance
    {
        std::size_t connections = 0;
        std::size_t bodies = 0; ///< arriving or complete
    };

    static bool isNear(Microseconds latency) { return latency < kNear; }
    /// @param connections how many the host allows
    static Allowance allowance(std::size_t connections, const host::DescriptorUse& descriptors);
    /// How many requests may run at once.
    /// @param connectionLimit how many connections may be open
    /// @param isInTurn whether a request is being made in its turn, beside those that are sent ahead
    static std::size_t width(const AddressMemory::Known& known, bool isDownload, std::size_t connectionLimit,
                             bool isInTurn);
    /// Whether one more body of `size` bytes may be fetched ahead.
    /// @param most the largest number of bodies
    static bool allowsBody(const Load& load, std::int64_t size, std::size_t most = kMostBodies);
    /// The limits of such a body until its call comes: it may not be larger than announced, and it leaves
    /// free space for all others that are fetched ahead.
    /// @param limits those of ordinary downloads
    static HttpLimits limitsAhead(const HttpLimits& limits, std::int64_t size);
    /// How long to wait for a sign of life while a request waits on a new connection. After that time the
    /// server is taken to have left the connection in its queue: it may have fewer workers than we have
    /// connections.
    static Microseconds stallTime(Microseconds latency);
};
