#include "tests/catalog-service/HttpProbe.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <curl/curl.h>
#include <gtest/gtest.h>

namespace test {

namespace {

std::size_t append(char* data, std::size_t size, std::size_t count, void* text)
{
    static_cast<std::string*>(text)->append(data, size * count);
    return size * count;
}

} // namespace

std::string ProbeAnswer::header(const std::string& name) const
{
    const auto found = headers.find(name);
    return found != headers.end() && found->second.size() == 1 ? found->second.front() : std::string();
}

ProbeAnswer probe(const std::string& method, const std::string& url,
                  const std::vector<std::string>& headerLines)
{
    ProbeAnswer answer;
    CURL* handle = curl_easy_init();
    curl_slist* lines = nullptr;
    for (const std::string& line : headerLines)
        lines = curl_slist_append(lines, line.c_str());
    curl_easy_setopt(handle, CURLOPT_URL, url.c_str());
    curl_easy_setopt(handle, CURLOPT_PATH_AS_IS, 1L);
    curl_easy_setopt(handle, CURLOPT_HTTPHEADER, lines);
    curl_easy_setopt(handle, CURLOPT_TIMEOUT, 20L);
    if (method == "HEAD")
        curl_easy_setopt(handle, CURLOPT_NOBODY, 1L);
    else
        curl_easy_setopt(handle, CURLOPT_CUSTOMREQUEST, method.c_str());
    curl_easy_setopt(handle, CURLOPT_WRITEFUNCTION, append);
    curl_easy_setopt(handle, CURLOPT_WRITEDATA, &answer.body);
    curl_easy_setopt(handle, CURLOPT_HEADERFUNCTION, append);
    curl_easy_setopt(handle, CURLOPT_HEADERDATA, &answer.headerText);
    const CURLcode result = curl_easy_perform(handle);
    EXPECT_EQ(result, CURLE_OK) << curl_easy_strerror(result) << ": " << url;
    curl_easy_getinfo(handle, CURLINFO_RESPONSE_CODE, &answer.status);
    curl_slist_free_all(lines);
    curl_easy_cleanup(handle);
    WebUtils::parseReturnHeader(answer.headerText, answer.headers);
    return answer;
}

std::string rawExchange(int port, const std::string& bytes)
{
    const int client = socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    address.sin_port = htons(static_cast<std::uint16_t>(port));
    EXPECT_EQ(connect(client, reinterpret_cast<sockaddr*>(&address), sizeof address), 0);
    EXPECT_EQ(send(client, bytes.data(), bytes.size(), MSG_NOSIGNAL), static_cast<ssize_t>(bytes.size()));
    std::string answer;
    char piece[4096];
    pollfd polled{client, POLLIN, 0};
    while (poll(&polled, 1, 200) > 0) {
        const ssize_t count = recv(client, piece, sizeof piece, 0);
        if (count <= 0)
            break;
        answer.append(piece, static_cast<std::size_t>(count));
    }
    close(client);
    return answer;
}

} // namespace test
