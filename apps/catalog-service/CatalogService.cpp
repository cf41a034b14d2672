#include "apps/catalog-service/CatalogService.h"

#include <cstdio>
#include <optional>

#include <time.h>

#include "OrvLibrary/host/SQL.h"
#include "OrvLibrary/host/StringUtils.h"
#include "apps/catalog-service/Preconditions.h"
#include "apps/catalog-service/RequestTarget.h"
#include "apps/catalog-service/ServiceServer.h"

namespace {

const char kContent[] = "content";
const char kManufacturers[] = "manufacturers";
const char kManufacturerFile[] = "manufacturer_data.json";

ServiceAnswer textAnswer(int status, const std::string& text)
{
    ServiceAnswer answer;
    answer.status = status;
    answer.text = text;
    return answer;
}

ServiceAnswer notFound()
{
    return textAnswer(404, "This content is not published.\n");
}

/// A date in HTTP's form, which is English in every locale.
std::string httpDate(std::time_t time)
{
    static const char* const days[] = {"Sun", "Mon", "Tue", "Wed", "Thu", "Fri", "Sat"};
    static const char* const months[] = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                         "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
    struct tm utc;
    gmtime_r(&time, &utc);
    char text[64];
    std::snprintf(text, sizeof text, "%s, %02d %s %04d %02d:%02d:%02d GMT", days[utc.tm_wday], utc.tm_mday,
                  months[utc.tm_mon], utc.tm_year + 1900, utc.tm_hour, utc.tm_min, utc.tm_sec);
    return text;
}

/// The names that a parameter may mean: decoded, then as sent.
std::vector<std::string> namesOf(const std::string& parameter)
{
    return {percentDecoded(parameter), parameter};
}

/// The names that a logo may have. Both the request and the file may use UTF-8 or Windows-1252.
std::vector<std::string> logoNamesOf(const std::string& parameter)
{
    std::vector<std::string> names = namesOf(parameter);
    names.push_back(SQL::to_utf8(names.front()));
    names.push_back(StringUtils::toWin1252(marl::unicode::String(names.front())));
    return names;
}

ServiceAnswer fileAnswer(const ServiceRequest& request, std::shared_ptr<const ContentFile> file)
{
    ServiceAnswer answer;
    answer.headers = {{"ETag", file->tag},
                      {"Last-Modified", httpDate(file->modified)},
                      {"Accept-Ranges", "bytes"},
                      {"Cache-Control", "no-cache"}};
    if (Preconditions::noneMatchNames(request.ifNoneMatch, file->tag)) {
        answer.status = 304;
        return answer;
    }
    const auto range = Preconditions::range(request.range, request.ifRange, file->tag, file->size);
    const std::string size = std::to_string(file->size);
    if (range.kind == Preconditions::RangeKind::Unsatisfiable) {
        answer.status = 416;
        answer.headers.emplace_back("Content-Range", "bytes */" + size);
        return answer;
    }
    answer.status = 200;
    answer.length = file->size;
    if (range.kind == Preconditions::RangeKind::Part) {
        answer.status = 206;
        answer.first = range.first;
        answer.length = range.last - range.first + 1;
        answer.headers.emplace_back("Content-Range", "bytes " + std::to_string(range.first) + "-" +
                                                         std::to_string(range.last) + "/" + size);
    }
    answer.file = std::move(file);
    return answer;
}

} // namespace

class CatalogService::Private
{
public:
    explicit Private(const std::string& folder)
        : mFolderName(folder), mServer([this](const ServiceRequest& request) { return answer(request); })
    {
    }

    ServiceAnswer answer(const ServiceRequest& request)
    {
        if (request.method != "GET" && request.method != "HEAD") {
            ServiceAnswer refusal = textAnswer(405, "Only GET and HEAD are served.\n");
            refusal.headers.emplace_back("Allow", "GET, HEAD");
            return refusal;
        }
        const RequestTarget target(request.target);
        if (target.path() == "/redirect") {
            ServiceAnswer redirect = textAnswer(302, "");
            redirect.headers.emplace_back("Location", "/content?");
            return redirect;
        }
        const auto file = find(target);
        return file ? fileAnswer(request, file) : notFound();
    }

    std::shared_ptr<const ContentFile> find(const RequestTarget& target)
    {
        std::string value;
        if (target.path() == "/content" && target.parameter("library", value))
            return mFolder->find(kContent, namesOf(value));
        if (target.path() == "/logos" && target.parameter("logo-path", value))
            return mFolder->find(kManufacturers, logoNamesOf(value));
        if (target.path() == "/manufacturers")
            return mFolder->find(kManufacturers, target.parameter("library", value)
                                                     ? namesOf(value)
                                                     : std::vector<std::string>{kManufacturerFile});
        return nullptr;
    }

    const std::string mFolderName;
    /// Set when the service starts.
    std::optional<ContentFolder> mFolder;
    std::string mAddress;
    ServiceServer mServer;
};

CatalogService::CatalogService(const std::string& folder) : mPrivate(std::make_unique<Private>(folder)) {}

CatalogService::~CatalogService() = default;

bool CatalogService::start(const std::string& address, int port, std::string& reason)
{
    mPrivate->mFolder.emplace(mPrivate->mFolderName);
    if (!mPrivate->mFolder->exists()) {
        reason = "no such folder: " + mPrivate->mFolderName;
        return false;
    }
    if (!mPrivate->mServer.start(address, port)) {
        reason = "cannot listen on " + address + " port " + std::to_string(port);
        return false;
    }
    mPrivate->mAddress = address;
    return true;
}

void CatalogService::stop()
{
    mPrivate->mServer.stop();
}

int CatalogService::port() const
{
    return mPrivate->mServer.port();
}

std::string CatalogService::url(const std::string& target) const
{
    const std::string& address = mPrivate->mAddress;
    const std::string host = address.find(':') == std::string::npos ? address : "[" + address + "]";
    return "http://" + host + ":" + std::to_string(port()) + target;
}
