// The steps on the network. From the redirect on, the requests are the same as in an update and pass through
// the download service that judges answers.
#include <unistd.h>

#include <QUrl>

#include "OrvHost/health/CertificateAdvice.h"
#include "OrvHost/health/Doctor.h"
#include "OrvHost/health/NetworkProbe.h"
#include "OrvHost/update/CarefulCurl.h"
#include "OrvLibrary/host/FileUtils.h"
#include "OrvLibrary/host/PathUtils.h"

namespace OrvHost {

namespace {

constexpr double kEnoughOfBody = 4096;
constexpr std::int64_t kOk = 200;

QUrl urlOf(const std::string& address)
{
    return QUrl(QString::fromStdString(address));
}

std::string adviceOn(const std::string& reason, const char* otherwise)
{
    const std::string advice = CertificateAdvice::of(reason);
    return advice.empty() ? otherwise : advice;
}

/// Ends a transfer when enough has arrived.
int stopWhenEnough(void*, double, double downloaded, double, double)
{
    return static_cast<int>(downloaded >= kEnoughOfBody);
}

CarefulCurl carefulService(const Settings::Values& values, const std::string& indexName)
{
    CarefulCurl::Settings settings;
    settings.url = values.url;
    settings.indexName = indexName;
    settings.retries.retries = 0;
    return CarefulCurl(Curl::get(), settings);
}

} // namespace

std::string Doctor::requestFor(const std::string& name) const
{
    return mEndpoint + "&library=" + name + "&product=" + mSubject.values.product +
           "&version=" + mSubject.values.productVersion;
}

Doctor::Finding Doctor::proxy()
{
    mProxy = NetworkProbe::proxyFor(urlOf(mSubject.values.url), mSubject.values.proxy);
    if (mProxy.empty())
        return {"no proxy is used", {}};
    const QUrl proxy = NetworkProbe::proxyUrl(mProxy);
    if (proxy.host().isEmpty())
        return {"'" + mProxy + "' is no address of a proxy",
                "Correct the setting 'proxy', or the variable http_proxy or https_proxy."};
    const std::string reason = NetworkProbe::connectTo(proxy);
    if (!reason.empty())
        return {"the proxy " + mProxy + " cannot be reached: " + reason,
                "Ask your network's administrator for the proxy, or unset it."};
    return {"proxy " + mProxy, {}};
}

Doctor::Finding Doctor::name() const
{
    if (!mProxy.empty())
        return {"the proxy looks names up", {}};
    const std::string host = urlOf(mSubject.values.url).host().toStdString();
    std::string address;
    const std::string reason = NetworkProbe::lookUp(host, address);
    if (!reason.empty())
        return {host + ": " + reason, "Look at the address and at this machine's network connection."};
    return {host + " is " + address, {}};
}

Doctor::Finding Doctor::connection() const
{
    if (!mProxy.empty())
        return {"the proxy connects", {}};
    const std::string reason = NetworkProbe::connectTo(urlOf(mSubject.values.url));
    if (!reason.empty())
        return {reason, "The service may be down, or a firewall in the way; try again later."};
    return {"connected", {}};
}

Doctor::Finding Doctor::certificate() const
{
    if (urlOf(mSubject.values.url).scheme().toLower() != QLatin1String("https"))
        return {"none needed for http", {}};
    std::string header;
    std::int64_t status = 0;
    if (Curl::get().getURLHeader(mSubject.values.url, {}, header, status))
        return {"the service's certificate is good", {}};
    const std::string reason = Curl::get().lastAnswer().reason;
    return {reason.empty() ? "no answer" : reason,
            adviceOn(reason, "The service may be down, or speak no https here; compare the address with the "
                             "publisher's, or try again later.")};
}

Doctor::Finding Doctor::redirect()
{
    CarefulCurl service = carefulService(mSubject.values, mSubject.indexName);
    mEndpoint = service.urlAfterRedirects(mSubject.values.url);
    const ServiceReport report = service.report();
    if (!report.verdict.empty())
        return {report.verdict, "Log in to the network with a web browser, or correct the address."};
    if (mEndpoint.empty())
        return {"the address leads nowhere: " + report.endpoint.reason,
                adviceOn(report.endpoint.reason, "Correct the address.")};
    return {"leads to " + mEndpoint, {}};
}

Doctor::Finding Doctor::index()
{
    CarefulCurl service = carefulService(mSubject.values, mSubject.indexName);
    std::string text;
    const bool isRead = service.browseURL(requestFor(mSubject.indexName), {}, text, true, 0);
    const ServiceReport report = service.report();
    if (!report.verdict.empty())
        return {report.verdict, "Log in to the network with a web browser, or correct the address."};
    if (!isRead)
        return {mSubject.indexName + ": " + report.index.reason,
                adviceOn(report.index.reason, "Correct the address, or tell the publisher of the service.")};
    mCatalog.clear();
    std::size_t count = 0;
    for (const std::string& name : report.indexNames) {
        const fileString extension = fileString(name).extension();
        if (extension != fileString(".orvlib") && extension != fileString(".zip"))
            continue;
        mCatalog = mCatalog.empty() ? name : mCatalog;
        ++count;
    }
    if (count == 0)
        return {mSubject.indexName + " lists no catalogs", "Tell the publisher of the service."};
    return {mSubject.indexName + " lists " + std::to_string(count) + " files", {}};
}

Doctor::Finding Doctor::header()
{
    CarefulCurl service = carefulService(mSubject.values, mSubject.indexName);
    std::string text;
    std::int64_t status = 0;
    service.getURLHeader(requestFor(mCatalog), {"If-None-Match: \"\""}, text, status);
    const ServiceReport report = service.report();
    if (!report.verdict.empty())
        return {report.verdict, "Log in to the network with a web browser, or correct the address."};
    const CatalogReport& answer = report.catalogs.front();
    if (answer.status != kOk)
        return {mCatalog + ": " + answer.reason, "Tell the publisher of the service."};
    if (!answer.length || !answer.tag)
        return {mCatalog + ": the service does not tell " + (answer.tag ? "the length" : "the version"),
                "Tell the publisher of the service: without it nothing is fetched."};
    return {mCatalog + " has " + std::to_string(*answer.length) + " bytes", {}};
}

/// Downloads only the beginning of the body, because a catalog may be large.
Doctor::Finding Doctor::body() const
{
    const fileString target =
        PathUtils::getObject().getTempPath() / fileString("doctor-" + std::to_string(getpid()) + ".part");
    std::string reason;
    int number = 0;
    const bool isWhole = Curl::get().download_to_location(requestFor(mCatalog), target, {}, nullptr,
                                                          stopWhenEnough, reason, number);
    FileUtils::removePath(target);
    if (!isWhole && number != Curl::kAbortedByCallback)
        return {mCatalog + ": " + reason, "Try again later, or tell the publisher of the service."};
    return {"bytes of " + mCatalog + " arrive", {}};
}

} // namespace OrvHost
