#pragma once

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <functional>
#include <list>
#include <map>
#include <mutex>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "tests/support/FaultReply.h"

namespace test {

/// An HTTP server on a free port of 127.0.0.1 that replies as badly as a test wants and records the requests.
/// It keeps connections open between requests unless a reply ends them. All operations are thread-safe while
/// it serves; the destructor ends every connection at once.
class FaultServer
{
public:
    using Handler = std::function<FaultReply(const FaultRequest&)>;

    FaultServer();
    ~FaultServer();
    FaultServer(const FaultServer&) = delete;
    FaultServer& operator=(const FaultServer&) = delete;

    int port() const { return mPort; }
    /// "http://127.0.0.1:PORT" followed by `target`.
    std::string url(const std::string& target = "/") const;

    /// Sends this reply to every request for `path`; if `path` contains a "?", it is compared with the whole
    /// target. A later call for the same path replaces an earlier one. Other paths get a 404.
    void on(const std::string& path, const FaultReply& reply);
    /// Sends these replies to the requests for `path` one after the other, and then repeats the last one.
    void onInTurn(const std::string& path, const std::vector<FaultReply>& replies);
    /// Sends this reply to the request with this number, counted from 0 over all paths.
    void onNumber(int number, const FaultReply& reply);
    /// Handles all requests for which no reply was set. The handler runs on the thread of the connection.
    void otherwise(Handler handler);

    /// Calls `hook` for every accepted connection. A lock is held meanwhile, so the hook must not call the
    /// server.
    void onAccept(std::function<void()> hook);
    /// Waits this long after accepting a connection before reading from it.
    void delayConnections(std::chrono::milliseconds time);
    /// Serves at most `count` connections at a time, each until the client closes it. The others wait.
    void limitWorkers(int count);
    /// While `count` requests are in progress, replies to each further request with `refusal`, for example a
    /// status 429. A request is in progress until the last part of its reply is sent.
    void limitRequests(int count, const FaultReply& refusal);
    /// How many requests got the refusal of `limitRequests`.
    int refusedCount() const;
    /// While `count` connections are open, resets each further connection without reading from it.
    void limitConnections(int count);
    /// The largest number of requests that were in progress at the same time.
    int mostAtOnce() const;
    /// Limits the system's queue of connections that the server has not accepted to `count`, and one more.
    void limitBacklog(int count);
    /// Accepts no further connections. The system still completes them, but nobody reads from them.
    void stopAccepting();
    /// Closes the listening socket: further attempts to connect are refused. Open connections stay.
    void stopListening();
    /// Closes all open connections.
    void dropConnections();

    std::vector<FaultRequest> requests() const;
    /// The requests whose path or target is `path`.
    std::vector<FaultRequest> requestsFor(const std::string& path) const;
    /// How many connections were accepted so far.
    int connectionCount() const;
    /// Waits at most 10 s until the server has received `count` requests.
    bool waitForRequests(std::size_t count) const;

private:
    struct Connection
    {
        int socket = -1;
        int number = 0;
        std::thread thread;
    };

    void acceptLoop();
    void serve(Connection& connection);
    /// Waits for a free worker. Returns false if the server stops.
    bool takeWorker();
    bool readRequest(Connection& connection, std::string& buffer, FaultRequest& request);
    FaultReply replyTo(const FaultRequest& request);
    void endRequest();
    /// Returns whether the connection stays open.
    bool send(int socket, const FaultReply& reply, const std::string& method);
    /// Returns whether everything was sent, up to the point where the reply falls silent.
    bool sendPieces(int socket, const FaultReply& reply, const std::string& bytes);
    static std::size_t pieceEnd(const FaultReply& reply, std::size_t at, std::size_t end);
    bool sendBytes(int socket, const std::string& bytes, std::size_t from, std::size_t to);
    /// Returns false if the server stops or the client disconnects.
    bool wait(int socket, std::chrono::milliseconds time);
    void waitForever(int socket);
    void endConnection(Connection& connection, bool withReset);
    /// Removes the connections that have ended. The caller holds the lock; the threads of these connections
    /// no longer need it.
    void joinEnded();

    int mListener = -1;
    int mPort = 0;
    /// Its read end becomes readable when the server stops.
    int mStopPipe[2] = {-1, -1};
    std::thread mAcceptThread;

    mutable std::mutex mMutex;
    mutable std::condition_variable mChanged;
    bool mStopping = false;
    bool mAccepting = true;
    std::chrono::milliseconds mConnectionDelay{0};
    int mIdleWorkers = 1000;
    int mAtOnce = 0;
    int mMostAtOnce = 0;
    int mRequestLimit = 1000;
    int mRefusedCount = 0;
    int mOpenConnections = 0;
    int mConnectionLimit = 1000;
    FaultReply mRefusal = FaultReply::status(429);
    std::map<std::string, std::vector<FaultReply>> mReplies;
    std::map<int, FaultReply> mNumbered;
    Handler mOtherwise;
    std::function<void()> mOnAccept;
    std::vector<FaultRequest> mRequests;
    /// The open connections and some that have ended.
    std::list<Connection> mConnections;
    int mConnectionCount = 0;
};

} // namespace test
