// How it works: each step is a function that gives a text and, on failure, an advice. `take` times it, turns
// an exception into a failure, and leaves it out where the step before it on the way failed. From the
// redirect on, the requests are those of an update, through the download service that judges what it is told.
#include "OrvHost/health/Doctor.h"

#include <algorithm>
#include <chrono>
#include <filesystem>

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <QUrl>

#include "OrvHost/health/Masking.h"
#include "OrvHost/health/NetworkProbe.h"
#include "OrvHost/update/CarefulCurl.h"
#include "OrvLibrary/host/FileUtils.h"
#include "OrvLibrary/host/PathUtils.h"

namespace OrvHost {

namespace fs = std::filesystem;

namespace {

using Clock = std::chrono::steady_clock;

constexpr std::uintmax_t kReserve = 256 * 1024 * 1024;
constexpr double kEnoughOfBody = 4096;
constexpr std::int64_t kOk = 200;

const char* const kFolders[] = {"user",       "core",     "bonus", "manufacturer", "manufacturer-data",
                                "referenced", "textures", "temp"};

QUrl urlOf(const std::string& address)
{
    return QUrl(QString::fromStdString(address));
}

/// The existing folder at or above a path.
fs::path existing(fs::path path)
{
    std::error_code error;
    while (!fs::exists(path, error) && path.has_relative_path())
        path = path.parent_path();
    return path;
}

/// Ends a transfer once enough of it came.
int stopWhenEnough(void*, double, double downloaded, double, double)
{
    return downloaded >= kEnoughOfBody ? 1 : 0;
}

std::string shown(const std::string& address)
{
    return Masking::withoutSecrets(address);
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

std::vector<Doctor::Step> Doctor::examine()
{
    mSteps.clear();
    take("settings", true, [this] { return settings(); });
    take("folders", true, [this] { return folders(); });
    take("space", true, [this] { return space(); });
    take("locks", true, [this] { return locks(); });
    take("proxy", isGood("settings"), [this] { return proxy(); });
    take("name", isGood("proxy"), [this] { return name(); });
    take("connection", isGood("name"), [this] { return connection(); });
    take("certificate", isGood("connection"), [this] { return certificate(); });
    take("redirect", isGood("certificate"), [this] { return redirect(); });
    take("index", isGood("redirect"), [this] { return index(); });
    take("header", isGood("index"), [this] { return header(); });
    take("body", isGood("header"), [this] { return body(); });
    return mSteps;
}

void Doctor::take(const char* name, bool canBeTried, const std::function<Finding()>& look)
{
    Step step;
    step.name = name;
    if (!canBeTried) {
        step.text = "not tried";
        mSteps.push_back(step);
        return;
    }
    const Clock::time_point start = Clock::now();
    Finding finding;
    try {
        finding = look();
    } catch (const std::exception& error) {
        finding = {error.what(), "Correct what the text names, and try again."};
    }
    step.milliseconds = std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - start).count();
    step.ok = finding.advice.empty();
    step.text = shown(finding.text);
    step.advice = finding.advice;
    mSteps.push_back(step);
}

bool Doctor::isGood(const char* name) const
{
    return std::any_of(mSteps.begin(), mSteps.end(),
                       [name](const Step& step) { return step.name == name && step.ok.value_or(false); });
}

std::string Doctor::requestFor(const std::string& name) const
{
    return mEndpoint + "&library=" + name + "&product=" + mSubject.values.product +
           "&version=" + mSubject.values.productVersion;
}

Doctor::Finding Doctor::settings() const
{
    if (!mSubject.settingsProblem.empty())
        return {mSubject.settingsProblem, "Correct the file at that place, or remove it."};
    if (mSubject.values.url.empty())
        return {"no address of a catalog service is set",
                "Set it with 'orv-library settings set url ADDRESS', or give --url."};
    if (!Curl::get().downloadable(mSubject.values.url))
        return {"'" + mSubject.values.url + "' is no http or https address",
                "Set the address that the publisher gave you."};
    return {"address " + mSubject.values.url, {}};
}

Doctor::Finding Doctor::folders() const
{
    const fs::path root(mSubject.root.toNativeString());
    std::error_code error;
    if (!fs::is_directory(root, error))
        return {root.string() + ": there is no library", "Run 'orv-library update' to make one."};
    for (const char* name : kFolders) {
        const fs::path folder = root / name;
        if (fs::exists(folder, error) && !fs::is_directory(folder, error))
            return {folder.string() + ": is no folder", "Move the file of that name away."};
        const fs::path checked = fs::exists(folder, error) ? folder : root;
        if (access(checked.c_str(), R_OK | W_OK | X_OK) != 0)
            return {checked.string() + ": cannot be written",
                    "Give your user the right to write there, for example with 'chmod u+rwx'."};
    }
    return {root.string() + " can be read and written", {}};
}

Doctor::Finding Doctor::space() const
{
    const fs::space_info found = fs::space(existing(mSubject.root.toNativeString()));
    const std::string text = std::to_string(found.available / 1000000) + " MB free";
    // The smaller of the two is what the download service leaves free.
    if (found.available < std::min<std::uintmax_t>(kReserve, found.capacity / 20))
        return {text, "Make room on the disk; downloads leave a reserve free and stop before it."};
    return {text, {}};
}

Doctor::Finding Doctor::locks() const
{
    const std::string path = mSubject.root.toNativeString() + "temp/update.lock";
    const int file = open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW);
    if (file < 0)
        return {"no update is running", {}};
    const bool isFree = flock(file, LOCK_EX | LOCK_NB) == 0;
    close(file);
    if (!isFree)
        return {"an update is running: " + path + " is locked", "Wait until it has ended, or cancel it."};
    return {"no update is running", {}};
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
            "Look at this machine's clock. A company's own authority is named with --cacert or the setting "
            "'certificates'."};
}

Doctor::Finding Doctor::redirect()
{
    CarefulCurl service = carefulService(mSubject.values, mSubject.indexName);
    mEndpoint = service.urlAfterRedirects(mSubject.values.url);
    const ServiceReport report = service.report();
    if (!report.verdict.empty())
        return {report.verdict, "Log in to the network with a web browser, or correct the address."};
    if (mEndpoint.empty())
        return {"the address leads nowhere: " + report.endpoint.reason, "Correct the address."};
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
                "Correct the address, or tell the publisher of the service."};
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

/// The beginning of a body is enough; a catalog may be large.
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
