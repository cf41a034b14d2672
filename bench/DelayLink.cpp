// A TCP link with a round-trip time, in user space. Bytes that arrive on either side leave on the other side
// after half of that time, independent of other bytes, so the link adds delay only. Connecting takes a round
// trip too: the system completes the client's connection at once, so the link holds back the client's first
// bytes until a real client could have sent them.
//
//     bench_delay_link TARGET-PORT MILLISECONDS      prints the port to connect to
//
// The program ends when its standard input ends.
#include <algorithm>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <deque>
#include <list>
#include <string>
#include <vector>

#include <arpa/inet.h>
#include <fcntl.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

namespace {

using Clock = std::chrono::steady_clock;

struct Piece
{
    Clock::time_point due;
    std::string bytes; ///< empty: end of the stream
};

/// One direction of a connection.
struct Lane
{
    int from = -1;
    int to = -1;
    Clock::time_point open; ///< nothing is sent before this time
    std::deque<Piece> pieces;
    bool readEnded = false;
    bool writeEnded = false;
};

struct Connection
{
    int client = -1;
    int server = -1;
    Lane up;
    Lane down;
};

constexpr std::size_t kPiecesAtOnce = 4096;

sockaddr_in loopback(int port)
{
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    address.sin_port = htons(static_cast<std::uint16_t>(port));
    return address;
}

void makeQuick(int socket)
{
    const int on = 1;
    setsockopt(socket, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
    fcntl(socket, F_SETFL, O_NONBLOCK);
}

void read(Lane& lane, Clock::duration delay)
{
    char buffer[65536];
    const ssize_t count = recv(lane.from, buffer, sizeof buffer, 0);
    if (count < 0 && (errno == EAGAIN || errno == EINTR))
        return;
    lane.readEnded = count <= 0;
    lane.pieces.push_back({std::max(Clock::now(), lane.open) + delay,
                           std::string(buffer, count > 0 ? static_cast<std::size_t>(count) : 0)});
}

void write(Lane& lane, Clock::time_point now)
{
    while (!lane.pieces.empty() && lane.pieces.front().due <= now && !lane.writeEnded) {
        Piece& piece = lane.pieces.front();
        if (piece.bytes.empty()) {
            shutdown(lane.to, SHUT_WR);
            lane.writeEnded = true;
            return;
        }
        const ssize_t count = send(lane.to, piece.bytes.data(), piece.bytes.size(), MSG_NOSIGNAL);
        if (count < 0 && (errno == EAGAIN || errno == EINTR))
            return;
        if (count < 0) {
            lane.writeEnded = true;
            return;
        }
        piece.bytes.erase(0, static_cast<std::size_t>(count));
        if (piece.bytes.empty())
            lane.pieces.pop_front();
    }
}

class Link
{
public:
    Link(int targetPort, Clock::duration oneWay) : mTarget(loopback(targetPort)), mOneWay(oneWay)
    {
        mListener = socket(AF_INET, SOCK_STREAM, 0);
        sockaddr_in address = loopback(0);
        socklen_t size = sizeof address;
        if (bind(mListener, reinterpret_cast<sockaddr*>(&address), size) != 0 || listen(mListener, 1024) != 0)
            std::exit(1);
        getsockname(mListener, reinterpret_cast<sockaddr*>(&address), &size);
        std::printf("%d\n", ntohs(address.sin_port));
        std::fflush(stdout);
        fcntl(mListener, F_SETFL, O_NONBLOCK);
    }

    void run()
    {
        for (;;) {
            // Both passes over the due pieces use the same time. Otherwise a piece could be missed by both.
            const auto now = Clock::now();
            std::vector<pollfd> polled{{0, POLLIN, 0}, {mListener, POLLIN, 0}};
            for (Connection& connection : mConnections) {
                polled.push_back(watch(connection.up, connection.down, now));
                polled.push_back(watch(connection.down, connection.up, now));
            }
            const auto time = std::chrono::duration_cast<std::chrono::nanoseconds>(untilDue(now));
            const timespec wait{time.count() / 1'000'000'000, time.count() % 1'000'000'000};
            ppoll(polled.data(), polled.size(), &wait, nullptr);
            if (polled[0].revents != 0)
                return;
            move(polled);
            if (polled[1].revents != 0)
                acceptAll();
        }
    }

private:
    static pollfd watch(const Lane& lane, const Lane& back, Clock::time_point now)
    {
        short events = 0;
        if (!lane.readEnded && lane.pieces.size() < kPiecesAtOnce)
            events |= POLLIN;
        if (!back.pieces.empty() && back.pieces.front().due <= now && !back.writeEnded)
            events |= POLLOUT;
        return {events == 0 ? -1 : lane.from, events, 0};
    }

    Clock::duration untilDue(Clock::time_point now) const
    {
        Clock::time_point first = now + std::chrono::seconds(1);
        for (const Connection& connection : mConnections) {
            for (const Lane* lane : {&connection.up, &connection.down}) {
                const bool isLater = !lane->pieces.empty() && lane->pieces.front().due > now;
                if (isLater && lane->pieces.front().due < first)
                    first = lane->pieces.front().due;
            }
        }
        return std::max(first - Clock::now(), Clock::duration::zero());
    }

    void move(const std::vector<pollfd>& polled)
    {
        std::size_t at = 2;
        for (auto next = mConnections.begin(); next != mConnections.end(); at += 2) {
            Connection& connection = *next;
            if ((polled[at].revents & (POLLIN | POLLHUP | POLLERR)) != 0 && !connection.up.readEnded)
                read(connection.up, mOneWay);
            if ((polled[at + 1].revents & (POLLIN | POLLHUP | POLLERR)) != 0 && !connection.down.readEnded)
                read(connection.down, mOneWay);
            const auto now = Clock::now();
            write(connection.up, now);
            write(connection.down, now);
            if (connection.up.writeEnded && connection.down.writeEnded) {
                close(connection.client);
                close(connection.server);
                next = mConnections.erase(next);
            } else {
                ++next;
            }
        }
    }

    void acceptAll()
    {
        for (int client = accept(mListener, nullptr, nullptr); client >= 0;
             client = accept(mListener, nullptr, nullptr)) {
            const int server = socket(AF_INET, SOCK_STREAM, 0);
            if (connect(server, reinterpret_cast<sockaddr*>(&mTarget), sizeof mTarget) != 0)
                std::exit(1);
            makeQuick(client);
            makeQuick(server);
            Connection connection;
            connection.client = connection.up.from = connection.down.to = client;
            connection.server = connection.up.to = connection.down.from = server;
            connection.up.open = Clock::now() + 2 * mOneWay;
            mConnections.push_back(connection);
        }
    }

    sockaddr_in mTarget;
    Clock::duration mOneWay;
    int mListener = -1;
    std::list<Connection> mConnections;
};

} // namespace

int main(int argc, char** argv)
{
    if (argc != 3)
        return 2;
    const std::chrono::duration<double, std::milli> roundTrip(std::atof(argv[2]));
    Link link(std::atoi(argv[1]), std::chrono::duration_cast<Clock::duration>(roundTrip / 2));
    link.run();
    return 0;
}
