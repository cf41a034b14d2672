// One measurement of the download service, or of plain libcurl for comparison. It prints the seconds and the
// peak memory. run-downloads runs these columns and those of other programs.
//
//     bench_download file URL TARGET       the download service, with a progress function
//     bench_download checks URL COUNT      COUNT header requests "URL&library=catalogN.orvlib", in turn
//     bench_download ahead URL COUNT       the same, announced first
//     bench_download bare URL COUNT        the same with one reused libcurl handle
//     bench_download bodies URL FOLDER     the 1,000 files "URL&library=bodyN.orvlib", announced first
//     bench_download turns URL FOLDER      the same, not announced
//     bench_download unsynced URL FOLDER   the same as turns, but no file is synced
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include <curl/curl.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <unistd.h>

#include "OrvLibrary/host/Curl.h"

namespace {

constexpr int kBodies = 1000;
constexpr std::int64_t kBodySize = 100'000;

bool isSynced = true;

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
    // The service has no file with this tag, so every response is complete.
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

} // namespace

/// Replaces the system's function, so that a measurement without syncs is possible.
int fsync(int descriptor)
{
    return isSynced ? static_cast<int>(syscall(SYS_fsync, descriptor)) : 0;
}

int main(int argc, char** argv)
{
    if (argc != 4)
        fail("usage: bench_download WORK URL TARGET|COUNT|FOLDER");
    const std::string work = argv[1];
    isSynced = work != "unsynced";
    const auto start = std::chrono::steady_clock::now();
    if (work == "file")
        downloadFile(argv[2], argv[3]);
    else if (work == "bodies" || work == "turns" || work == "unsynced")
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
