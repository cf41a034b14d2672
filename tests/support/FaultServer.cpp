#include "tests/support/FaultServer.h"

#include <algorithm>
#include <cstring>
#include <sstream>
#include <stdexcept>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

namespace test {

namespace {

constexpr int kForever = -1;
/// A request counts as finished before the last part of its reply is sent. This is the largest size of that
/// part.
constexpr std::size_t kLastPart = 16'384;

[[noreturn]] void raise(const char* what)
{
    throw std::runtime_error(std::string(what) + ": " + std::strerror(errno));
}

int listenOnFreePort(int& port)
{
    const int listener = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    if (listener < 0)
        raise("socket");
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t size = sizeof address;
    if (bind(listener, reinterpret_cast<sockaddr*>(&address), size) != 0 || listen(listener, 256) != 0)
        raise("listen");
    if (getsockname(listener, reinterpret_cast<sockaddr*>(&address), &size) != 0)
        raise("getsockname");
    port = ntohs(address.sin_port);
    return listener;
}

std::string withoutCarriageReturn(std::string line)
{
    if (!line.empty() && line.back() == '\r')
        line.pop_back();
    return line;
}

FaultRequest parseRequest(const std::string& text)
{
    FaultRequest request;
    std::istringstream lines(text);
    std::string line;
    std::getline(lines, line);
    std::istringstream(line) >> request.method >> request.target;
    while (std::getline(lines, line)) {
        line = withoutCarriageReturn(line);
        if (!line.empty())
            request.headerLines.push_back(line);
    }
    return request;
}

} // namespace

FaultServer::FaultServer()
{
    mListener = listenOnFreePort(mPort);
    if (pipe(mStopPipe) != 0)
        raise("pipe");
    mAcceptThread = std::thread([this] { acceptLoop(); });
}

FaultServer::~FaultServer()
{
    {
        const std::lock_guard<std::mutex> lock(mMutex);
        mStopping = true;
        mChanged.notify_all();
    }
    ::close(mStopPipe[1]); // wakes every thread that waits
    mAcceptThread.join();
    for (Connection& connection : mConnections)
        connection.thread.join();
    if (mListener >= 0)
        ::close(mListener);
    ::close(mStopPipe[0]);
}

std::string FaultServer::url(const std::string& target) const
{
    return "http://127.0.0.1:" + std::to_string(mPort) + target;
}

void FaultServer::on(const std::string& path, const FaultReply& reply)
{
    onInTurn(path, {reply});
}

void FaultServer::onInTurn(const std::string& path, const std::vector<FaultReply>& replies)
{
    const std::lock_guard<std::mutex> lock(mMutex);
    mReplies[path] = replies;
}

void FaultServer::onNumber(int number, const FaultReply& reply)
{
    const std::lock_guard<std::mutex> lock(mMutex);
    mNumbered[number] = reply;
}

void FaultServer::otherwise(Handler handler)
{
    const std::lock_guard<std::mutex> lock(mMutex);
    mOtherwise = std::move(handler);
}

void FaultServer::onAccept(std::function<void()> hook)
{
    const std::lock_guard<std::mutex> lock(mMutex);
    mOnAccept = std::move(hook);
}

void FaultServer::delayConnections(std::chrono::milliseconds time)
{
    const std::lock_guard<std::mutex> lock(mMutex);
    mConnectionDelay = time;
}

void FaultServer::limitWorkers(int count)
{
    const std::lock_guard<std::mutex> lock(mMutex);
    mIdleWorkers = count;
}

void FaultServer::limitRequests(int count, const FaultReply& refusal)
{
    const std::lock_guard<std::mutex> lock(mMutex);
    mRequestLimit = count;
    mRefusal = refusal;
}

int FaultServer::refusedCount() const
{
    const std::lock_guard<std::mutex> lock(mMutex);
    return mRefusedCount;
}

void FaultServer::limitConnections(int count)
{
    const std::lock_guard<std::mutex> lock(mMutex);
    mConnectionLimit = count;
}

int FaultServer::mostAtOnce() const
{
    const std::lock_guard<std::mutex> lock(mMutex);
    return mMostAtOnce;
}

void FaultServer::endRequest()
{
    const std::lock_guard<std::mutex> lock(mMutex);
    --mAtOnce;
}

bool FaultServer::takeWorker()
{
    std::unique_lock<std::mutex> lock(mMutex);
    mChanged.wait(lock, [this] { return mStopping || mIdleWorkers > 0; });
    --mIdleWorkers;
    return !mStopping;
}

void FaultServer::limitBacklog(int count)
{
    const std::lock_guard<std::mutex> lock(mMutex);
    if (listen(mListener, count) != 0)
        raise("listen");
}

void FaultServer::stopAccepting()
{
    const std::lock_guard<std::mutex> lock(mMutex);
    mAccepting = false;
}

void FaultServer::stopListening()
{
    const std::lock_guard<std::mutex> lock(mMutex);
    mAccepting = false;
    // The accepting thread may be polling the socket, which would keep a closed socket listening for a
    // moment. The shutdown ends that at once.
    shutdown(mListener, SHUT_RDWR);
    ::close(mListener);
    mListener = -1;
}

void FaultServer::dropConnections()
{
    const std::lock_guard<std::mutex> lock(mMutex);
    for (Connection& connection : mConnections) {
        if (connection.socket >= 0)
            shutdown(connection.socket, SHUT_RDWR);
    }
}

std::vector<FaultRequest> FaultServer::requests() const
{
    const std::lock_guard<std::mutex> lock(mMutex);
    return mRequests;
}

std::vector<FaultRequest> FaultServer::requestsFor(const std::string& path) const
{
    std::vector<FaultRequest> found;
    for (const FaultRequest& request : requests()) {
        if (request.path() == path || request.target == path)
            found.push_back(request);
    }
    return found;
}

int FaultServer::connectionCount() const
{
    const std::lock_guard<std::mutex> lock(mMutex);
    return mConnectionCount;
}

bool FaultServer::waitForRequests(std::size_t count) const
{
    std::unique_lock<std::mutex> lock(mMutex);
    return mChanged.wait_for(lock, std::chrono::seconds(10), [&] { return mRequests.size() >= count; });
}

void FaultServer::acceptLoop()
{
    for (;;) {
        int listener = -1;
        {
            const std::lock_guard<std::mutex> lock(mMutex);
            listener = mAccepting ? mListener : -1; // poll ignores a negative descriptor
        }
        pollfd polled[] = {{listener, POLLIN, 0}, {mStopPipe[0], POLLIN, 0}};
        poll(polled, 2, 20);
        const std::lock_guard<std::mutex> lock(mMutex);
        if (mStopping)
            return;
        if (!mAccepting || (polled[0].revents & POLLIN) == 0)
            continue;
        const int socket = accept4(mListener, nullptr, nullptr, SOCK_CLOEXEC);
        if (socket < 0)
            continue;
        if (mOnAccept)
            mOnAccept();
        joinEnded();
        mConnections.emplace_back();
        Connection& connection = mConnections.back();
        connection.socket = socket;
        connection.number = mConnectionCount++;
        connection.thread = std::thread([this, &connection] { serve(connection); });
    }
}

void FaultServer::joinEnded()
{
    mConnections.remove_if([](Connection& connection) {
        if (connection.socket >= 0)
            return false;
        connection.thread.join(); // frees the stack of the thread
        return true;
    });
}

void FaultServer::serve(Connection& connection)
{
    const int on = 1;
    setsockopt(connection.socket, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
    std::chrono::milliseconds delay{0};
    bool withReset = false;
    {
        const std::lock_guard<std::mutex> lock(mMutex);
        delay = mConnectionDelay;
        withReset = ++mOpenConnections > mConnectionLimit;
    }
    std::string buffer;
    FaultRequest request;
    bool stays = takeWorker() && !withReset && wait(connection.socket, delay);
    while (stays && readRequest(connection, buffer, request)) {
        const FaultReply reply = replyTo(request);
        stays = send(connection.socket, reply, request.method);
        withReset = reply.mEnd == FaultReply::End::Reset;
    }
    endConnection(connection, withReset);
}

void FaultServer::endConnection(Connection& connection, bool withReset)
{
    const std::lock_guard<std::mutex> lock(mMutex);
    if (withReset) {
        const linger now{1, 0};
        setsockopt(connection.socket, SOL_SOCKET, SO_LINGER, &now, sizeof now);
    }
    ::close(connection.socket);
    connection.socket = -1;
    --mOpenConnections;
    ++mIdleWorkers;
    mChanged.notify_all();
}

bool FaultServer::readRequest(Connection& connection, std::string& buffer, FaultRequest& request)
{
    for (;;) {
        const std::size_t end = buffer.find("\r\n\r\n");
        if (end != std::string::npos) {
            request = parseRequest(buffer.substr(0, end + 2));
            request.connection = connection.number;
            buffer.erase(0, end + 4);
            return true;
        }
        pollfd polled[] = {{connection.socket, POLLIN, 0}, {mStopPipe[0], POLLIN, 0}};
        poll(polled, 2, kForever);
        if (polled[1].revents != 0)
            return false;
        char piece[4096];
        const ssize_t count = recv(connection.socket, piece, sizeof piece, 0);
        if (count <= 0)
            return false;
        buffer.append(piece, static_cast<std::size_t>(count));
    }
}

FaultReply FaultServer::replyTo(const FaultRequest& request)
{
    std::unique_lock<std::mutex> lock(mMutex);
    const int number = static_cast<int>(mRequests.size());
    mRequests.push_back(request);
    mChanged.notify_all();
    mMostAtOnce = std::max(mMostAtOnce, ++mAtOnce);
    if (mAtOnce > mRequestLimit) {
        ++mRefusedCount;
        return mRefusal;
    }
    const auto numbered = mNumbered.find(number);
    if (numbered != mNumbered.end())
        return numbered->second;
    auto found = mReplies.find(request.target);
    if (found == mReplies.end())
        found = mReplies.find(request.path());
    if (found != mReplies.end()) {
        const FaultReply reply = found->second.front();
        if (found->second.size() > 1)
            found->second.erase(found->second.begin());
        return reply;
    }
    const Handler handler = mOtherwise;
    lock.unlock();
    return handler ? handler(request) : FaultReply::status(404, "not here\n");
}

/// The end of the piece that starts at `at`: the next pause, the end of a trickled piece, or the start of the
/// last part.
std::size_t FaultServer::pieceEnd(const FaultReply& reply, std::size_t at, std::size_t end)
{
    const auto pause = reply.mPauses.upper_bound(at);
    std::size_t to = pause == reply.mPauses.end() ? end : std::min(pause->first, end);
    if (reply.mPiece < to - at)
        to = at + reply.mPiece;
    return to == end && end - at > kLastPart ? end - kLastPart : to;
}

bool FaultServer::send(int socket, const FaultReply& reply, const std::string& method)
{
    const bool isWhole = sendPieces(socket, reply, reply.bytes(method));
    if (isWhole && reply.mSilence != std::string::npos)
        waitForever(socket);
    if (!isWhole || reply.mSilence != std::string::npos)
        endRequest();
    return isWhole && reply.mSilence == std::string::npos && reply.mEnd == FaultReply::End::Keep;
}

bool FaultServer::sendPieces(int socket, const FaultReply& reply, const std::string& bytes)
{
    const std::size_t end = std::min(bytes.size(), reply.mSilence);
    for (std::size_t at = 0, to = 0;; at = to) {
        const auto pause = reply.mPauses.find(at);
        if (pause != reply.mPauses.end() && !wait(socket, pause->second))
            return false;
        to = pieceEnd(reply, at, end);
        if (to == end && reply.mSilence == std::string::npos) {
            endRequest(); // The client may send its next request as soon as it has the reply.
            sendBytes(socket, bytes, at, to);
            return true;
        }
        if (!sendBytes(socket, bytes, at, to))
            return false;
        if (to == end)
            return true;
        if (reply.mPiece != std::string::npos && !wait(socket, reply.mPiecePause))
            return false;
    }
}

bool FaultServer::sendBytes(int socket, const std::string& bytes, std::size_t from, std::size_t to)
{
    while (from < to) {
        pollfd polled[] = {{socket, POLLOUT, 0}, {mStopPipe[0], POLLIN, 0}};
        poll(polled, 2, kForever);
        if (polled[1].revents != 0)
            return false;
        const ssize_t count = ::send(socket, bytes.data() + from, to - from, MSG_NOSIGNAL | MSG_DONTWAIT);
        if (count < 0 && errno == EAGAIN)
            continue;
        if (count <= 0)
            return false;
        from += static_cast<std::size_t>(count);
    }
    return true;
}

bool FaultServer::wait(int socket, std::chrono::milliseconds time)
{
    if (time.count() == 0)
        return true;
    pollfd polled[] = {{socket, POLLRDHUP, 0}, {mStopPipe[0], POLLIN, 0}};
    return poll(polled, 2, static_cast<int>(time.count())) == 0;
}

void FaultServer::waitForever(int socket)
{
    pollfd polled[] = {{socket, POLLRDHUP, 0}, {mStopPipe[0], POLLIN, 0}};
    poll(polled, 2, kForever);
}

} // namespace test
