#include "OrvHost/history/VersionKeeper.h"

#include "OrvHost/history/CatalogAddress.h"
#include "OrvLibrary/host/WebUtils.h"

namespace OrvHost {

namespace {

constexpr std::int64_t kOk = 200;
constexpr std::int64_t kNotModified = 304;

std::string lastValue(const WebUtils::HeaderMap& headers, const char* name)
{
    const auto values = headers.find(name);
    return values == headers.end() || values->second.empty() ? std::string() : values->second.back();
}

/// The tag of an answer without quotes, as the library reads it. Empty if there is none, and for a web page.
std::string versionIn(const std::string& headerText)
{
    WebUtils::HeaderMap headers;
    WebUtils::parseReturnHeader(headerText, headers);
    if (lastValue(headers, "Content-Type").rfind("text/html", 0) == 0)
        return {};
    const std::string value = lastValue(headers, "ETag");
    const std::size_t opening = value.find('"');
    const std::size_t closing = value.rfind('"');
    return opening == closing ? value : value.substr(opening + 1, closing - opening - 1);
}

/// The version at which a catalog, or its archive of referenced files, is held; null if neither is.
const std::string* heldVersion(const CatalogPins& pins, const CatalogPlace& place)
{
    const auto held = pins.held().find(place);
    if (held != pins.held().end())
        return &held->second.version;
    const auto companion = pins.held().find(place.companion());
    return companion == pins.held().end() ? nullptr : &companion->second.version;
}

} // namespace

bool VersionKeeper::getURLHeader(const std::string& url, const std::vector<std::string>& headerLines,
                                 std::string& headerText, std::int64_t& status)
{
    mIsToldCurrent = false;
    if (!ForwardingCurl::getURLHeader(url, headerLines, headerText, status))
        return false;
    if (status != kOk)
        return true;
    const CatalogPlace place = CatalogAddress::placeOf(url);
    const std::string version = versionIn(headerText);
    if (place.name.empty() || version.empty())
        return true;
    const std::string* const held = heldVersion(mPins, place);
    if (held == nullptr)
        return isUnwanted(place, version) ? tellCurrent(status) : true;
    if (version == *held)
        return true; // the file has changed or is missing, so it must be downloaded again
    const std::lock_guard<std::mutex> lock(mMutex);
    mOffers.push_back({place, version, url, headerLines});
    return tellCurrent(status);
}

bool VersionKeeper::tellCurrent(std::int64_t& status)
{
    status = kNotModified;
    mIsToldCurrent = true;
    return true;
}

Curl::Answer VersionKeeper::lastAnswer()
{
    Answer answer = ForwardingCurl::lastAnswer();
    if (mIsToldCurrent && answer.status == kOk)
        answer.status = kNotModified;
    return answer;
}

bool VersionKeeper::isUnwanted(const CatalogPlace& place, const std::string& version) const
{
    const auto restored = mPins.restored().find(place);
    return restored != mPins.restored().end() && restored->second.leaves.count(version) != 0;
}

std::vector<VersionKeeper::Offer> VersionKeeper::offers() const
{
    const std::lock_guard<std::mutex> lock(mMutex);
    return mOffers;
}

bool VersionKeeper::download_to_location(const std::string& url, const fileString& target,
                                         const std::vector<std::string>& headerLines, void* context,
                                         ProgressFunction progress, std::string& reason, int& errorNumber)
{
    mIsToldCurrent = false;
    return keepArchive(url, reason) && ForwardingCurl::download_to_location(url, target, headerLines, context,
                                                                            progress, reason, errorNumber);
}

bool VersionKeeper::downloadResumable(const ResumableDownload& request, void* context,
                                      ProgressFunction progress, std::string& reason, int& errorNumber)
{
    mIsToldCurrent = false;
    return keepArchive(request.url, reason) &&
           ForwardingCurl::downloadResumable(request, context, progress, reason, errorNumber);
}

bool VersionKeeper::keepArchive(const std::string& url, std::string& reason)
{
    const CatalogPlace archive = CatalogAddress::archiveOf(url);
    if (archive.name.empty())
        return true;
    return mHistory.keep(archive, reason);
}

} // namespace OrvHost
