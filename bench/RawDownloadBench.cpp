// The limit of network and disk: the work of bench_download with plain sockets and nothing else. It prints
// the seconds. run-downloads runs its columns beside the others. The service must be on the loopback
// interface.
//
//     bench_raw_download file URL TARGET      one file, received and written in pieces of up to 1 MB
//     bench_raw_download checks URL COUNT     COUNT header requests "URL&library=catalogN.orvlib" on four
//                                             connections, all sent at once
//     bench_raw_download bodies URL FOLDER    the 1,000 files "URL&library=bodyN.orvlib" on one connection,
//                                             all requested at once
#include <algorithm>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <string>
#include <thread>
#include <vector>

#include <arpa/inet.h>
#include <fcntl.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include "OrvLibrary/host/Curl.h"

namespace {

constexpr int kBodies = 1000;
constexpr int kConnections = 4;

[[noreturn]] void fail(const std::string& reason)
{
    std::fprintf(stderr, "bench_raw_download: %s\n", reason.c_str());
    std::exit(1);
}

/// A connection to the service at 127.0.0.1. The address gives its port.
class Connection
{
public:
    explicit Connection(const std::string& url) : mSocket(socket(AF_INET, SOCK_STREAM, 0)), mBuffer(1 << 20)
    {
        sockaddr_in address = {};
        address.sin_family = AF_INET;
        address.sin_port = htons(static_cast<std::uint16_t>(std::atoi(url.c_str() + url.rfind(':') + 1)));
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        if (connect(mSocket, reinterpret_cast<sockaddr*>(&address), sizeof address) != 0)
            fail("no connection to " + url);
    }
    ~Connection() { close(mSocket); }
    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;

    void sendAll(const std::string& text) const
    {
        for (std::size_t sent = 0; sent < text.size();) {
            const ssize_t size = send(mSocket, text.data() + sent, text.size() - sent, MSG_NOSIGNAL);
            if (size <= 0)
                fail("cannot send");
            sent += static_cast<std::size_t>(size);
        }
    }

    /// @return the Content-Length of the response
    std::int64_t readHead()
    {
        std::string head;
        while (head.size() < 4 || head.compare(head.size() - 4, 4, "\r\n\r\n") != 0) {
            if (mAt == mEnd)
                receive();
            head += mBuffer[mAt++];
        }
        const std::string key = "Content-Length: ";
        const std::size_t length = head.find(key);
        if (head.find(" 200 ") == std::string::npos || length == std::string::npos)
            fail("unexpected answer " + head);
        return std::atoll(head.c_str() + length + key.size());
    }

    void copyBody(std::int64_t size, const std::string& path)
    {
        const int file = open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0666);
        while (size > 0) {
            if (mAt == mEnd)
                receive();
            const auto piece = std::min<std::int64_t>(size, static_cast<std::int64_t>(mEnd - mAt));
            if (write(file, mBuffer.data() + mAt, static_cast<std::size_t>(piece)) != piece)
                fail("cannot write " + path);
            mAt += static_cast<std::size_t>(piece);
            size -= piece;
        }
        close(file);
    }

private:
    void receive()
    {
        const ssize_t size = recv(mSocket, mBuffer.data(), mBuffer.size(), 0);
        if (size <= 0)
            fail("connection closed");
        mAt = 0;
        mEnd = static_cast<std::size_t>(size);
    }

    const int mSocket;
    std::vector<char> mBuffer;
    std::size_t mAt = 0;
    std::size_t mEnd = 0;
};

std::string pathOf(const std::string& url)
{
    return url.substr(url.find('/', url.find("//") + 2));
}

std::string hostOf(const std::string& url)
{
    const std::size_t begin = url.find("//") + 2;
    return url.substr(begin, url.find('/', begin) - begin);
}

std::string requestFor(const std::string& method, const std::string& url)
{
    return method + " " + pathOf(url) + " HTTP/1.1\r\nHost: " + hostOf(url) +
           "\r\nIf-None-Match: \"none\"\r\n\r\n";
}

void downloadFile(const std::string& url, const std::string& target)
{
    Connection connection(hostOf(url));
    connection.sendAll(requestFor("GET", url));
    connection.copyBody(connection.readHead(), target);
}

void checkHeaders(const std::string& redirect, int count)
{
    const std::string url = Curl::get().urlAfterRedirects(redirect) + "&library=catalog";
    std::vector<std::thread> threads;
    for (int first = 0; first < kConnections; ++first) {
        threads.emplace_back([&url, count, first] {
            Connection connection(hostOf(url));
            std::string requests;
            for (int i = first; i < count; i += kConnections)
                requests += requestFor("HEAD", url + std::to_string(i) + ".orvlib");
            connection.sendAll(requests);
            for (int i = first; i < count; i += kConnections)
                connection.readHead();
        });
    }
    for (std::thread& thread : threads)
        thread.join();
}

void downloadBodies(const std::string& redirect, const std::string& folder)
{
    const std::string url = Curl::get().urlAfterRedirects(redirect) + "&library=";
    const auto name = [](int number) { return "body" + std::to_string(number) + ".orvlib"; };
    Connection connection(hostOf(url));
    std::thread sender([&] {
        std::string requests;
        for (int i = 0; i < kBodies; ++i)
            requests += requestFor("GET", url + name(i));
        connection.sendAll(requests);
    });
    for (int i = 0; i < kBodies; ++i)
        connection.copyBody(connection.readHead(), folder + "/" + name(i));
    sender.join();
}

} // namespace

int main(int argc, char** argv)
{
    if (argc != 4)
        fail("usage: bench_raw_download file|checks|bodies URL TARGET|COUNT|FOLDER");
    const std::string work = argv[1];
    const auto start = std::chrono::steady_clock::now();
    if (work == "file")
        downloadFile(argv[2], argv[3]);
    else if (work == "checks")
        checkHeaders(argv[2], std::atoi(argv[3]));
    else
        downloadBodies(argv[2], argv[3]);
    const std::chrono::duration<double> time = std::chrono::steady_clock::now() - start;
    std::printf("{\"seconds\":%.6f,\"peakMegabytes\":0}\n", time.count());
    return 0;
}
