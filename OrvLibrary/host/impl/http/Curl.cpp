#include "OrvLibrary/host/Curl.h"

#include <utility>

#include "OrvLibrary/host/impl/files/Installed_p.h"
#include "OrvLibrary/host/impl/http/CancelQuestion_p.h"
#include "OrvLibrary/host/impl/http/CurlService_p.h"
#include "OrvLibrary/host/impl/http/RateLimit_p.h"

CurlService& defaultCurlService()
{
    return host::immortal<CurlService, CurlService>();
}

namespace {

host::Installed<Curl> gInstalled([]() -> Curl& { return defaultCurlService(); });

} // namespace

Curl::Curl() = default;
Curl::~Curl() = default;

std::string Curl::urlAfterRedirects(const std::string& url)
{
    return defaultCurlService().urlAfterRedirects(url);
}

void Curl::prefetchHeaders(const std::vector<HeaderRequest>&) {}

void Curl::prefetchDownloads(const std::vector<DownloadRequest>&) {}

Curl::Answer Curl::lastAnswer()
{
    return {};
}

bool Curl::downloadResumable(const ResumableDownload& request, void* context, ProgressFunction progress,
                             std::string& reason, int& errorNumber)
{
    return download_to_location(request.url, request.target, request.headerLines, context, progress, reason,
                                errorNumber);
}

Curl::CancelQuestion Curl::setCancelQuestion(CancelQuestion question)
{
    return std::exchange(::CancelQuestion::ofThread, question);
}

void Curl::setCertificates(const std::string& fileOrFolder)
{
    defaultCurlService().setCertificates(fileOrFolder);
}

void Curl::setRateLimit(std::int64_t bytesPerSecond)
{
    RateLimit::ofProcess().set(bytesPerSecond);
}

void Curl::forgetFailures()
{
    defaultCurlService().forgetUnanswered();
}

void Curl::setProxy(const std::string& proxy)
{
    defaultCurlService().setProxy(proxy);
}

void Curl::setConnectionLimit(int connections)
{
    defaultCurlService().setConnectionLimit(connections);
}

Curl& Curl::get()
{
    return gInstalled.get();
}

Curl* Curl::install(Curl* service)
{
    return gInstalled.install(service);
}
