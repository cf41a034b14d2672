// How it works: the HTTP library parses requests and writes answers. The connections are ours, because a
// client keeps many of them open: each has its own thread and reads requests until it is idle for too long or
// the server stops. `end` shuts all connections down, which wakes their threads.
#include "apps/catalog-service/ServiceServer.h"

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <condition_variable>
#include <mutex>
#include <set>
#include <thread>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <httplib.h>

namespace {

constexpr int kQueuedConnections = 1024;
/// The time limit for one read or write, in milliseconds.
constexpr int kPatience = 30'000;
/// How long a connection may be idle, in milliseconds.
constexpr int kIdleTime = 120'000;
constexpr std::size_t kPieceSize = 256 * 1024;

/// An accepted connection for the HTTP parser.
class SocketStream : public httplib::Stream
{
public:
    explicit SocketStream(int socket) : mSocket(socket) {}

    bool is_readable() const override { return wait(POLLIN, kPatience); }
    bool is_writable() const override { return wait(POLLOUT, kPatience); }

    ssize_t read(char* data, std::size_t size) override
    {
        if (mAt == mEnd) {
            if (!is_readable())
                return -1;
            const ssize_t count = recv(mSocket, mBuffer, sizeof mBuffer, 0);
            if (count <= 0)
                return count;
            mAt = 0;
            mEnd = static_cast<std::size_t>(count);
        }
        const std::size_t count = std::min(size, mEnd - mAt);
        std::copy(mBuffer + mAt, mBuffer + mAt + count, data);
        mAt += count;
        return static_cast<ssize_t>(count);
    }

    ssize_t write(const char* data, std::size_t size) override
    {
        return is_writable() ? send(mSocket, data, size, MSG_NOSIGNAL | MSG_DONTWAIT) : -1;
    }

    /// Waits for a request; false if the connection was idle for too long.
    bool awaitRequest() const { return mAt < mEnd || wait(POLLIN, kIdleTime); }

    void get_remote_ip_and_port(std::string& ip, int& port) const override
    {
        // nobody asks for them
        ip.clear();
        port = 0;
    }
    void get_local_ip_and_port(std::string& ip, int& port) const override
    {
        get_remote_ip_and_port(ip, port);
    }
    int socket() const override { return mSocket; }

private:
    bool wait(short events, int time) const
    {
        pollfd polled{mSocket, events, 0};
        return poll(&polled, 1, time) > 0;
    }

    int mSocket;
    char mBuffer[8192];
    std::size_t mAt = 0;
    std::size_t mEnd = 0;
};

/// Makes a thread for each connection, because a client keeps connections open and may have a hundred.
class ConnectionThreads : public httplib::TaskQueue
{
public:
    void enqueue(std::function<void()> work) override
    {
        {
            const std::lock_guard<std::mutex> lock(mMutex);
            ++mRunning;
        }
        try {
            std::thread([this, work = std::move(work)] {
                work();
                finished();
            }).detach();
        } catch (const std::system_error&) {
            finished(); // the system gave us no thread; the client sees its connection closed
        }
    }

    void shutdown() override
    {
        std::unique_lock<std::mutex> lock(mMutex);
        mDone.wait(lock, [this] { return mRunning == 0; });
    }

private:
    void finished()
    {
        const std::lock_guard<std::mutex> lock(mMutex);
        --mRunning;
        mDone.notify_all();
    }

    std::mutex mMutex;
    std::condition_variable mDone;
    int mRunning = 0;
};

ServiceRequest toServiceRequest(const httplib::Request& request)
{
    ServiceRequest result;
    result.method = request.method;
    result.target = request.target;
    const std::size_t count = request.get_header_value_count("If-None-Match");
    for (std::size_t i = 0; i < count; ++i)
        result.ifNoneMatch += (i == 0 ? "" : ", ") + request.get_header_value("If-None-Match", i);
    result.range = request.get_header_value("Range");
    result.ifRange = request.get_header_value("If-Range");
    return result;
}

/// Sends one piece of the file for each call.
httplib::ContentProvider fileProvider(const ServiceAnswer& answer)
{
    const auto buffer = std::make_shared<std::string>(kPieceSize, '\0');
    return [file = answer.file, first = answer.first, buffer](std::size_t offset, std::size_t length,
                                                              httplib::DataSink& sink) {
        const std::size_t wanted = std::min(length, buffer->size());
        const std::size_t count =
            file->read(first + static_cast<std::int64_t>(offset), buffer->data(), wanted);
        // If the file became shorter, end the connection, so that the client does not take it for complete.
        return count > 0 && sink.write(buffer->data(), count);
    };
}

void apply(const ServiceAnswer& answer, httplib::Response& response)
{
    response.status = answer.status;
    for (const auto& [name, value] : answer.headers)
        response.set_header(name, value);
    if (answer.file && answer.length > 0)
        response.set_content_provider(static_cast<std::size_t>(answer.length), "application/octet-stream",
                                      fileProvider(answer));
    else if (answer.file)
        response.set_content("", "application/octet-stream");
    else if (!answer.text.empty())
        response.set_content(answer.text, "text/plain; charset=utf-8");
}

} // namespace

/// The HTTP parser and writer, with our own connections. With theirs, stopping would wait for idle ones.
class ServiceServer::Private : public httplib::Server
{
public:
    explicit Private(ServiceHandler handler) : mHandler(std::move(handler))
    {
        new_task_queue = [] { return new ConnectionThreads; };
        set_tcp_nodelay(true);
        // Without the usual sharing of ports: a port that is in use must be an error.
        set_socket_options([this](int socket) {
            const int on = 1;
            setsockopt(socket, SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
            mListener = socket;
        });
        set_pre_routing_handler([this](const httplib::Request& request, httplib::Response& response) {
            // We answer ranges ourselves, so the parser must not do it again.
            const_cast<httplib::Request&>(request).ranges.clear();
            apply(mHandler(toServiceRequest(request)), response);
            return HandlerResponse::Handled;
        });
    }

    bool begin(const std::string& address, int port)
    {
        if (port == 0)
            mPort = bind_to_any_port(address);
        else
            mPort = bind_to_port(address, port) ? port : -1;
        if (mPort <= 0)
            return false;
        // A client may open a hundred connections at once, which is more than the parser's own queue holds.
        ::listen(mListener, kQueuedConnections);
        mThread = std::thread([this] { listen_after_bind(); });
        while (!is_running())
            std::this_thread::yield();
        return true;
    }

    void end()
    {
        if (!mThread.joinable())
            return;
        {
            const std::lock_guard<std::mutex> lock(mMutex);
            mStopping = true;
            for (const int socket : mSockets)
                shutdown(socket, SHUT_RDWR);
        }
        stop();
        mThread.join();
    }

    int port() const { return mPort; }

private:
    bool process_and_close_socket(socket_t socket) override
    {
        if (admit(socket)) {
            SocketStream stream(socket);
            bool isClosing = false;
            bool hasBody = false;
            const auto look = [&hasBody](const httplib::Request& request) {
                hasBody = request.has_header("Content-Length") || request.has_header("Transfer-Encoding");
            };
            // A request with a body ends the connection: its bytes would be taken for the next request.
            while (!isClosing && !hasBody && stream.awaitRequest() &&
                   process_request(stream, false, isClosing, look)) {
            }
        }
        dismiss(socket);
        return true;
    }

    bool admit(int socket)
    {
        const std::lock_guard<std::mutex> lock(mMutex);
        mSockets.insert(socket);
        return !mStopping;
    }

    void dismiss(int socket)
    {
        const std::lock_guard<std::mutex> lock(mMutex);
        mSockets.erase(socket);
        shutdown(socket, SHUT_RDWR);
        ::close(socket);
    }

    ServiceHandler mHandler;
    int mListener = -1;
    int mPort = -1;
    std::thread mThread;
    std::mutex mMutex;
    bool mStopping = false;
    std::set<int> mSockets;
};

ServiceServer::ServiceServer(ServiceHandler handler) : mPrivate(std::make_unique<Private>(std::move(handler)))
{
}

ServiceServer::~ServiceServer()
{
    stop();
}

bool ServiceServer::start(const std::string& address, int port)
{
    return mPrivate->begin(address, port);
}

void ServiceServer::stop()
{
    mPrivate->end();
}

int ServiceServer::port() const
{
    return mPrivate->port();
}
