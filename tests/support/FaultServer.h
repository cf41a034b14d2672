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

/// An HTTP server on a free port of 127.0.0.1 that answers as badly as a test wants, and remembers what it
/// was asked. Connections are kept open between requests unless a reply ends them. All operations may be
/// called from any thread while it serves; the destructor ends every connection at once.
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

    /// Answers every request for `path` (or, where `path` holds a "?", for that target) so. What was said
    /// last of a path counts; other paths get a 404.
    void on(const std::string& path, const FaultReply& reply);
    /// Answers the requests for `path` with these replies one after the other, then with the last one.
    void onInTurn(const std::string& path, const std::vector<FaultReply>& replies);
    /// Answers request number `number` of the server, counted from 0, so, whatever it asks for.
    void onNumber(int number, const FaultReply& reply);
    /// Answers all that nothing else was said of. Called on the connection's thread.
    void otherwise(Handler handler);

    /// Called for every connection that was accepted, with a lock held: it is not to ask the server anything.
    void onAccept(std::function<void()> hook);
    /// Waits so long after accepting a connection before it is read.
    void delayConnections(std::chrono::milliseconds time);
    /// Serves only so many connections at a time, each until the client closes it; the others wait.
    void limitWorkers(int count);
    /// Answers what comes while so many requests are being answered with `refusal`, such as a status of 429.
    /// A request is being answered until the last part of its answer goes out.
    void limitRequests(int count, const FaultReply& refusal);
    /// How many requests were refused so.
    int refusedCount() const;
    /// Resets each connection that comes while so many are open, before it is read.
    void limitConnections(int count);
    /// The most requests that were being answered at once.
    int mostAtOnce() const;
    /// Lets the system hold only so many connections, and one more, that nobody has accepted.
    void limitBacklog(int count);
    /// Accepts no further connections: the system takes them, nobody reads.
    void stopAccepting();
    /// Closes the listening socket, so that connecting is refused. Open connections stay.
    void stopListening();
    /// Ends all open connections.
    void dropConnections();

    std::vector<FaultRequest> requests() const;
    /// Requests whose path or target is `path`.
    std::vector<FaultRequest> requestsFor(const std::string& path) const;
    /// Connections accepted so far.
    int connectionCount() const;
    /// Waits until so many requests have come, at most 10 s.
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
    /// Waits for a worker; false when the server stops.
    bool takeWorker();
    bool readRequest(Connection& connection, std::string& buffer, FaultRequest& request);
    FaultReply replyTo(const FaultRequest& request);
    void endRequest();
    /// Whether the connection stays.
    bool send(int socket, const FaultReply& reply, const std::string& method);
    /// Whether all went out, up to where the reply falls silent.
    bool sendPieces(int socket, const FaultReply& reply, const std::string& bytes);
    static std::size_t pieceEnd(const FaultReply& reply, std::size_t at, std::size_t end);
    bool sendBytes(int socket, const std::string& bytes, std::size_t from, std::size_t to);
    /// Waits; false when the server stops or the client goes.
    bool wait(int socket, std::chrono::milliseconds time);
    void waitForever(int socket);
    void endConnection(Connection& connection, bool withReset);
    /// Forgets the connections that have ended. Called with the lock held, which their threads need no more.
    void joinEnded();

    int mListener = -1;
    int mPort = 0;
    /// Readable once the server stops.
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
    /// Open ones, and a few that have ended.
    std::list<Connection> mConnections;
    int mConnectionCount = 0;
};

} // namespace test
