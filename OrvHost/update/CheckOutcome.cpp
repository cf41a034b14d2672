// How it works: each record of the library becomes a catalog, whose state follows from the answer. The report
// of the download service adds what the library does not store: whether a length and a tag were sent at all,
// and why a request failed. If all changes together are less than a kilobyte, an update would download
// nothing; each catalog then says so.
#include "OrvHost/update/CheckOutcome.h"

#include <algorithm>
#include <filesystem>

#include <QJsonArray>

#include "OrvHost/update/UpdateOutcome.h"

namespace OrvHost {

using LibraryCatalogUpdate::CatalogUpdateData;

namespace {

using Catalog = CheckOutcome::Catalog;
using State = CheckOutcome::State;

constexpr std::uint64_t kBytesPerKilobyte = 1000;
constexpr std::size_t kShownTag = 12;

CatalogCategory categoryOf(const fileString& name, const CatalogUpdateData& record)
{
    if (record.category == Library::kBonusLibrary)
        return CatalogCategory::Bonus;
    if (record.category == Library::kManufacturerLibrary)
        return CatalogCategory::Manufacturer;
    return name.extension() == fileString(".zip") ? CatalogCategory::Referenced : CatalogCategory::Core;
}

std::string shortTag(const std::string& tag)
{
    return tag.size() <= kShownTag ? tag : tag.substr(0, kShownTag) + "...";
}

QJsonValue textOrNull(const std::optional<std::string>& text)
{
    return text ? QJsonValue(QString::fromUtf8(text->data(), static_cast<int>(text->size()))) : QJsonValue();
}

/// Makes a catalog from a record.
class Judge
{
public:
    Judge(const fileString& name, const CatalogUpdateData& record, const ServiceReport& service)
        : mRecord(record)
    {
        mCatalog.place = {categoryOf(name, record), name.toNativeString()};
        for (const CatalogReport& report : service.catalogs) {
            if (installedNameOf(report, record) == mCatalog.place.name)
                mReport = report;
        }
        mCatalog.status = mReport.status;
        mCatalog.milliseconds = mReport.time.count();
        mVerdict = service.verdict;
    }

    Catalog catalog()
    {
        takeVersions();
        if (!mVerdict.empty())
            settle(State::Unknown, mVerdict);
        else if (mReport.isMissing())
            settle(State::Gone, "the service does not have it (HTTP " + std::to_string(mReport.status) + ")");
        else if (mReport.isUnchanged() && mCatalog.installed)
            settle(State::Current, "the service says that it has not changed");
        else if (mReport.isFound())
            judgeVersion();
        else
            settle(State::Unknown, mReport.reason.empty() ? reasonWithoutAnswer() : mReport.reason);
        return mCatalog;
    }

private:
    /// Bonus and manufacturer catalogs are asked for as packed archives.
    static std::string installedNameOf(const CatalogReport& report, const CatalogUpdateData& record)
    {
        return record.category == Library::kCoreLibrary ? report.asked : installedName(report.asked);
    }

    void takeVersions()
    {
        std::error_code error;
        if (std::filesystem::exists(mCatalog.place.path().toNativeString(), error)) {
            mCatalog.installed = mRecord.installed ? mRecord.serverETag : mRecord.localHash;
            mIsTagKnown = !mCatalog.place.tag().empty();
        }
        if (mReport.isUnchanged() || mReport.isFound())
            mCatalog.offered = mReport.tag;
        if (mReport.isUnchanged() && !mReport.tag)
            mCatalog.offered = mCatalog.installed;
    }

    void judgeVersion()
    {
        if (mRecord.installed)
            return settle(State::Current, "it was fetched and put in place");
        if (!mReport.tag)
            return settle(State::Unknown, "the service did not tell its version");
        if (!mRecord.needsUpdate() && mCatalog.installed)
            return settle(State::Current, "same tag as installed: " + shortTag(*mReport.tag));
        mCatalog.bytes = mReport.length;
        if (!mCatalog.installed)
            return settle(State::Missing, "it is not installed; the service has " + shortTag(*mReport.tag));
        settle(State::New, (mIsTagKnown ? "tag differs: had " + shortTag(*mCatalog.installed)
                                        : "no tag known: asked with the SHA-1 of the installed file") +
                               ", service has " + shortTag(*mReport.tag));
    }

    std::string reasonWithoutAnswer() const
    {
        return mReport.status == 0 ? "it was not asked for" : "HTTP " + std::to_string(mReport.status);
    }

    void settle(State state, const std::string& why)
    {
        mCatalog.state = state;
        mCatalog.why = why;
    }

    const CatalogUpdateData& mRecord;
    CatalogReport mReport;
    Catalog mCatalog;
    std::string mVerdict;
    bool mIsTagKnown = false;
};

void hold(Catalog& catalog)
{
    if (catalog.state == State::Unknown || catalog.state == State::Gone)
        return;
    const bool isNewer = catalog.offered && catalog.offered != catalog.installed;
    catalog.state = State::Held;
    catalog.why = isNewer ? "held at its version; the service has another one" : "held at its version";
}

/// Explains for each catalog why an update would not download it.
void explainUnfetched(std::vector<Catalog>& catalogs)
{
    std::uint64_t kilobytes = 0, bytes = 0;
    for (const Catalog& catalog : catalogs) {
        const auto length = static_cast<std::uint64_t>(catalog.bytes.value_or(0));
        kilobytes += catalog.waits() ? length / kBytesPerKilobyte : 0;
        bytes += catalog.waits() ? length : 0;
    }
    for (Catalog& catalog : catalogs) {
        if (!catalog.waits())
            continue;
        if (!catalog.bytes)
            catalog.why += "; an update does not fetch it, because the service does not tell its length";
        else if (kilobytes == 0)
            catalog.why += "; an update does not fetch it: " + std::to_string(bytes) +
                           " bytes in all, no file of a kilobyte";
    }
}

std::string errorOf(const ServiceReport& service)
{
    if (!service.verdict.empty())
        return service.verdict;
    if (service.endpoint.isAsked && !service.endpoint.isGood)
        return "the catalog web service was not found: " + service.endpoint.reason;
    if (service.index.isAsked && !service.index.isGood)
        return "the content index could not be fetched: " + service.index.reason;
    return {};
}

CheckOutcome::Kind kindOf(const CheckOutcome& outcome)
{
    const auto has = [&outcome](auto question) {
        return std::any_of(outcome.catalogs.begin(), outcome.catalogs.end(), question);
    };
    if (!outcome.error.empty() || has([](const Catalog& catalog) { return catalog.state == State::Unknown; }))
        return CheckOutcome::Kind::Failed;
    return has([](const Catalog& catalog) { return catalog.waits(); }) ? CheckOutcome::Kind::Waiting
                                                                       : CheckOutcome::Kind::Current;
}

bool isReached(const ServiceReport& service)
{
    return service.index.status != 0 ||
           std::any_of(service.catalogs.begin(), service.catalogs.end(),
                       [](const CatalogReport& catalog) { return catalog.status != 0; });
}

} // namespace

CheckOutcome CheckOutcome::of(const LibraryCatalogUpdate::CatalogMap& records, const ServiceReport& service,
                              const std::function<bool(const CatalogPlace&)>& isHeld, const fileString& root)
{
    CheckOutcome outcome;
    for (const auto& [name, record] : records) {
        Catalog catalog = Judge(name, record, service).catalog();
        if (isHeld(catalog.place))
            hold(catalog);
        outcome.catalogs.push_back(catalog);
    }
    explainUnfetched(outcome.catalogs);
    for (const Catalog& catalog : outcome.catalogs)
        outcome.bytes += catalog.waits() ? catalog.bytes.value_or(0) : 0;
    std::error_code error;
    const auto space = std::filesystem::space(root.toNativeString(), error);
    outcome.free = error ? 0 : static_cast<std::int64_t>(space.available);
    outcome.error = errorOf(service);
    outcome.isServiceReached = isReached(service) && service.verdict.empty();
    outcome.kind = kindOf(outcome);
    return outcome;
}

int CheckOutcome::exitStatus() const
{
    constexpr int kStatuses[] = {0, 3, 1};
    return kStatuses[static_cast<int>(kind)];
}

const char* CheckOutcome::name() const
{
    const char* const kNames[] = {"current", "waiting", "failed"};
    return kNames[static_cast<int>(kind)];
}

const char* CheckOutcome::stateName(State state)
{
    const char* const kNames[] = {"current", "new", "missing", "gone", "unknown", "held"};
    return kNames[static_cast<int>(state)];
}

QJsonObject CheckOutcome::document() const
{
    QJsonArray list;
    for (const Catalog& catalog : catalogs)
        list.append(QJsonObject{
            {"name", textOrNull(catalog.place.name)},
            {"category", textOrNull(catalog.place.categoryName())},
            {"state", stateName(catalog.state)},
            {"bytes", catalog.bytes ? QJsonValue(static_cast<qint64>(*catalog.bytes)) : QJsonValue()},
            {"installed", textOrNull(catalog.installed)},
            {"offered", textOrNull(catalog.offered)},
            {"why", textOrNull(catalog.why)}});
    QJsonObject object{{"outcome", name()},
                       {"catalogs", list},
                       {"bytes", static_cast<qint64>(bytes)},
                       {"free", static_cast<qint64>(free)}};
    if (!error.empty())
        object["error"] = textOrNull(error);
    return object;
}

std::string CheckOutcome::complaint() const
{
    if (!error.empty())
        return error;
    std::string text;
    std::size_t more = 0;
    for (const Catalog& catalog : catalogs) {
        if (catalog.state != State::Unknown)
            continue;
        if (text.size() < 400)
            text += (text.empty() ? "" : "; ") + catalog.place.name + ": " + catalog.why;
        else
            ++more;
    }
    return more == 0 ? text : text + "; and " + std::to_string(more) + " more";
}

} // namespace OrvHost
