// One measured piece of work with the download service, or with the bare transfer library beside it. It
// prints the seconds and the peak memory; run-downloads runs the columns side by side.
//
//     bench_download file URL TARGET       the download service, with a progress function
//     bench_download checks URL COUNT      COUNT header requests "URL&library=catalogN.orvlib", in turn
//     bench_download ahead URL COUNT       the same, announced first
//     bench_download bare URL COUNT        the same, by one reused handle of the transfer library
//     bench_download bodies URL FOLDER     the files "URL&library=bodyN.orvlib", announced first, into a
//     folder bench_download bodiesInTurn URL FOLDER    the same, not announced bench_download bodiesPiped URL
//     FOLDER     the same by bare sockets: all requests sent at once on one
//                                               connection, the answers written to files as they come
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
#include <curl/curl.h>
#include <netinet/in.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <unistd.h>

#include "OrvLibrary/host/Curl.h"

namespace {

constexpr int kBodies = 1000;
constexpr std::int64_t kBodySize = 100'000;

int goOn(void*, double, double, double, double)
{
    return 0;
}

[[noreturn]] void fail(const std::string& reason)
{
    std::fprintf(stderr, "bench_download: %s\n", reason.c_str());
    std::exit(1);
}

void downloadFile(const std::string& url, const std::string& target)
{
    std::string reason;
    int number = 0;
    if (!Curl::get().download_to_location(url, fileString(target), {}, nullptr, goOn, reason, number))
        fail(reason);
}

Curl::HeaderRequest request(const std::string& url, int number)
{
    // No tag that the service has: every answer is a whole one.
    return {url + "&library=catalog" + std::to_string(number) + ".orvlib", {"If-None-Match: \"none\""}};
}

void checkHeaders(const std::string& redirect, int count, bool ahead)
{
    const std::string url = Curl::get().urlAfterRedirects(redirect);
    std::vector<Curl::HeaderRequest> requests;
    for (int i = 0; i < count; ++i)
        requests.push_back(request(url, i));
    if (ahead)
        Curl::get().prefetchHeaders(requests);
    for (const auto& [address, lines] : requests) {
        std::string text;
        std::int64_t status = 0;
        if (!Curl::get().getURLHeader(address, lines, text, status) || status != 200)
            fail("no header from " + address);
    }
}

std::size_t append(char* data, std::size_t size, std::size_t count, void* text)
{
    static_cast<std::string*>(text)->append(data, size * count);
    return size * count;
}

void checkHeadersBare(const std::string& redirect, int count)
{
    const std::string url = Curl::get().urlAfterRedirects(redirect);
    CURL* const handle = curl_easy_init();
    for (int i = 0; i < count; ++i) {
        const Curl::HeaderRequest asked = request(url, i);
        std::string text;
        long status = 0;
        curl_slist* const lines = curl_slist_append(nullptr, asked.headerLines.front().c_str());
        curl_easy_reset(handle);
        curl_easy_setopt(handle, CURLOPT_URL, asked.url.c_str());
        curl_easy_setopt(handle, CURLOPT_NOBODY, 1L);
        curl_easy_setopt(handle, CURLOPT_HTTPHEADER, lines);
        curl_easy_setopt(handle, CURLOPT_HEADERFUNCTION, append);
        curl_easy_setopt(handle, CURLOPT_HEADERDATA, &text);
        if (curl_easy_perform(handle) != CURLE_OK)
            fail("no header from " + asked.url);
        curl_easy_getinfo(handle, CURLINFO_RESPONSE_CODE, &status);
        if (status != 200)
            fail("status " + std::to_string(status));
        curl_slist_free_all(lines);
    }
    curl_easy_cleanup(handle);
}

std::string bodyName(int number)
{
    return "body" + std::to_string(number) + ".orvlib";
}

void downloadBodies(const std::string& redirect, const std::string& folder, bool ahead)
{
    const std::string url = Curl::get().urlAfterRedirects(redirect);
    std::vector<Curl::DownloadRequest> requests;
    for (int i = 0; i < kBodies; ++i) {
        const fileString target(folder + "/" + bodyName(i));
        requests.push_back({url + "&library=" + bodyName(i), {"If-None-Match: \"none\""}, target, kBodySize});
    }
    if (ahead)
        Curl::get().prefetchDownloads(requests);
    for (const auto& [address, lines, target, size] : requests) {
        std::string reason;
        int number = 0;
        if (!Curl::get().download_to_location(address, target, lines, nullptr, goOn, reason, number))
            fail(reason);
    }
}

/// A socket that is connected to the address's host, which is 127.0.0.1.
int connectTo(const std::string& url)
{
    const std::size_t port = url.find(':', url.find("//")) + 1;
    sockaddr_in address = {};
    address.sin_family = AF_INET;
    address.sin_port = htons(static_cast<std::uint16_t>(std::atoi(url.c_str() + port)));
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    const int connection = socket(AF_INET, SOCK_STREAM, 0);
    if (connect(connection, reinterpret_cast<sockaddr*>(&address), sizeof address) != 0)
        fail("no connection to " + url);
    return connection;
}

void sendRequests(int connection, const std::string& path)
{
    std::string text;
    for (int i = 0; i < kBodies; ++i)
        text += "GET " + path + "&library=" + bodyName(i) + " HTTP/1.1\r\nHost: 127.0.0.1\r\n\r\n";
    for (std::size_t sent = 0; sent < text.size();) {
        const ssize_t size = send(connection, text.data() + sent, text.size() - sent, MSG_NOSIGNAL);
        if (size <= 0)
            fail("cannot send");
        sent += static_cast<std::size_t>(size);
    }
}

/// What comes on a connection, piece by piece.
class Incoming
{
public:
    explicit Incoming(int connection) : mConnection(connection), mBuffer(256 * 1024) {}

    std::size_t readHead()
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
        return static_cast<std::size_t>(std::atoll(head.c_str() + length + key.size()));
    }
    void copyBody(std::size_t size, std::ofstream& file)
    {
        while (size > 0) {
            if (mAt == mEnd)
                receive();
            const std::size_t piece = std::min(size, mEnd - mAt);
            file.write(mBuffer.data() + mAt, static_cast<std::streamsize>(piece));
            mAt += piece;
            size -= piece;
        }
    }

private:
    void receive()
    {
        const ssize_t size = recv(mConnection, mBuffer.data(), mBuffer.size(), 0);
        if (size <= 0)
            fail("connection closed");
        mAt = 0;
        mEnd = static_cast<std::size_t>(size);
    }

    const int mConnection;
    std::vector<char> mBuffer;
    std::size_t mAt = 0;
    std::size_t mEnd = 0;
};

void downloadBodiesPiped(const std::string& redirect, const std::string& folder)
{
    const std::string url = Curl::get().urlAfterRedirects(redirect);
    const int connection = connectTo(url);
    std::thread sender(sendRequests, connection, url.substr(url.find('/', url.find("//") + 2)));
    Incoming incoming(connection);
    for (int i = 0; i < kBodies; ++i) {
        std::ofstream file(folder + "/" + bodyName(i), std::ios::binary);
        incoming.copyBody(incoming.readHead(), file);
    }
    sender.join();
    close(connection);
}

} // namespace

int main(int argc, char** argv)
{
    if (argc != 4)
        fail("usage: bench_download WORK URL TARGET|COUNT|FOLDER");
    const std::string work = argv[1];
    const auto start = std::chrono::steady_clock::now();
    if (work == "file")
        downloadFile(argv[2], argv[3]);
    else if (work == "bodiesPiped")
        downloadBodiesPiped(argv[2], argv[3]);
    else if (work == "bodies" || work == "bodiesInTurn")
        downloadBodies(argv[2], argv[3], work == "bodies");
    else if (work == "bare")
        checkHeadersBare(argv[2], std::atoi(argv[3]));
    else
        checkHeaders(argv[2], std::atoi(argv[3]), work == "ahead");
    const std::chrono::duration<double> time = std::chrono::steady_clock::now() - start;
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    std::printf("{\"seconds\":%.6f,\"peakMegabytes\":%.1f}\n", time.count(),
                static_cast<double>(usage.ru_maxrss) / 1024);
    return 0;
}
