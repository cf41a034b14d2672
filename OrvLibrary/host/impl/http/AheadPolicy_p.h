#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>

/// Says how much is asked for ahead of its turn. All rules and numbers of asking ahead stand here; nothing
/// here knows a server.
///
/// In short: a near service, or one that nothing is known of, is asked in turn. A far one gets as many
/// requests at once as the host allows connections, less one for what is asked in turn; a connection that
/// carries many requests (HTTP/2) gets a hundred. After the first sign of trouble everything is asked in
/// turn.
struct AheadPolicy
{
    using Microseconds = std::chrono::microseconds;

    /// An answer that takes less time than this leaves little to gain.
    static constexpr Microseconds kNear{5'000};
    /// Requests that one HTTP/2 connection carries at once. Servers allow a hundred or more.
    static constexpr std::size_t kStreams = 100;
    /// Further HTTP/2 connections pay for so many requests to a service this far away.
    static constexpr std::size_t kSpreadRequests = 65;
    static constexpr Microseconds kSpreadLatency{50'000};
    static constexpr std::size_t kSpreadConnections = 8;

    /// Bodies are fetched ahead for no fewer downloads than these.
    static constexpr std::size_t kFewestBodies = 4;
    /// Bodies that are ahead of their turn, arriving or on the disk: each keeps a file open.
    static constexpr std::size_t kMostBodies = 128;
    /// The same in bytes. A larger body is not fetched ahead.
    static constexpr std::int64_t kMostBytes = 64'000'000;
    /// No more than this many bodies larger than `kLarge` arrive at a time.
    static constexpr std::int64_t kLarge = 8'000'000;
    static constexpr std::size_t kMostLarge = 2;

    /// A header request that has no answer after this time is asked again in its turn.
    static constexpr std::chrono::seconds kLongestWait{10};
    /// How long a request that must be alone waits for the others to end.
    static constexpr std::chrono::seconds kLongestHold{1};

    /// What is known of a list of requests and of the address that they go to.
    struct Situation
    {
        std::size_t requests = 0;
        /// Time to an answer; negative when it is not known.
        Microseconds latency{-1};
        bool isMultiplexing = false;
        /// How many connections the host allows.
        std::size_t connectionLimit = 16;
    };
    /// What is under way.
    struct Load
    {
        std::size_t bodies = 0; ///< arriving or on the disk
        std::int64_t bytes = 0; ///< announced for those
        std::size_t largeRunning = 0;
    };

    static bool isNear(Microseconds latency) { return latency < kNear; }
    /// How many HTTP/2 connections a list of header requests is spread over.
    static std::size_t connections(const Situation& situation);
    /// How many requests may be under way at once.
    /// @param open HTTP/2 connections that stand
    /// @param opening HTTP/2 connections that are being made, with one request each
    static std::size_t width(const Situation& situation, std::size_t open, std::size_t opening);
    /// Whether a further body of `size` bytes may be fetched ahead.
    static bool hasRoom(const Load& load, std::int64_t size);
    /// How long the service may be silent, while a request waits on a new connection, before the connection
    /// counts as one that the service has not taken: it may have fewer workers than there are connections.
    static Microseconds stallTime(Microseconds latency);
};
