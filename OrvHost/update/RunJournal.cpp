#include "OrvHost/update/RunJournal.h"

#include <algorithm>

#include <QJsonArray>

#include "OrvHost/update/LastCheck.h"
#include "OrvHost/update/RunRecords.h"

namespace OrvHost {

namespace {

using Failure = UpdateOutcome::Failure;

QString text(const std::string& utf8)
{
    return QString::fromUtf8(utf8.data(), static_cast<int>(utf8.size()));
}

QJsonValue numberOrNull(std::int64_t status)
{
    return status == 0 ? QJsonValue() : QJsonValue(static_cast<qint64>(status));
}

QJsonArray failures(const std::vector<Failure>& failed)
{
    QJsonArray list;
    for (const Failure& failure : failed)
        list.append(
            QJsonObject{{"catalog", failure.catalog ? QJsonValue(text(*failure.catalog)) : QJsonValue()},
                        {"status", numberOrNull(failure.status.value_or(0))},
                        {"reason", text(failure.reason)}});
    return list;
}

const CatalogReport* reportOf(const CheckOutcome::Catalog& catalog, const ServiceReport& service)
{
    for (const CatalogReport& report : service.catalogs) {
        if (report.asked == catalog.place.name || installedName(report.asked) == catalog.place.name)
            return &report;
    }
    return nullptr;
}

/// The state of a catalog after the run: that of a check, unless this run downloaded the catalog or failed
/// to.
std::string stateOf(const CheckOutcome::Catalog& catalog, const CatalogReport* report,
                    const std::vector<Failure>& failed)
{
    const bool isFailed = std::any_of(failed.begin(), failed.end(), [&catalog](const Failure& failure) {
        return failure.catalog == catalog.place.name;
    });
    if (isFailed)
        return catalog.state == CheckOutcome::State::Unknown ? "unknown" : "failed";
    return report && report->isDownloaded ? "updated" : CheckOutcome::stateName(catalog.state);
}

std::vector<Failure> unknownOnes(const ServiceReport& service, const CheckOutcome& found)
{
    std::vector<Failure> failed;
    if (service.index.isAsked && !service.index.isGood)
        failed.push_back({std::nullopt, service.index.status, service.index.reason});
    else if (!found.error.empty())
        failed.push_back({std::nullopt, service.endpoint.status, found.error});
    for (const CheckOutcome::Catalog& catalog : found.catalogs) {
        if (catalog.state == CheckOutcome::State::Unknown && catalog.status != 0)
            failed.push_back({catalog.place.name, catalog.status, catalog.why});
    }
    return failed;
}

} // namespace

template <class Work>
void RunJournal::attempt(Work work)
try {
    work();
} catch (const std::exception& error) {
    if (mProblem.empty())
        mProblem = error.what();
}

void RunJournal::begin(const char* kind, const QDateTime& start)
{
    attempt([&] { mNumber = RunRecords::begin(mRoot, kind, start); });
}

void RunJournal::endUpdate(const UpdateOutcome& outcome, const CheckOutcome& found)
{
    end(outcome.name(), found, outcome.service, outcome.failed);
    if (outcome.kind != UpdateOutcome::Kind::Cancelled)
        attempt([&] { LastCheck::save(mRoot, found); });
}

void RunJournal::endCheck(const ServiceReport& service, const CheckOutcome& found, bool isCancelled)
{
    end(isCancelled ? "cancelled" : found.name(), found, service, unknownOnes(service, found));
    if (!isCancelled)
        attempt([&] { LastCheck::save(mRoot, found); });
}

void RunJournal::end(const char* outcome, const CheckOutcome& found, const ServiceReport& service,
                     const std::vector<Failure>& failed)
{
    int asked = 0, fetched = 0;
    std::int64_t bytes = 0;
    QJsonArray catalogs;
    for (const CheckOutcome::Catalog& catalog : found.catalogs) {
        const CatalogReport* report = reportOf(catalog, service);
        asked += report ? 1 : 0;
        fetched += report && report->isDownloaded ? 1 : 0;
        bytes += report ? report->bytes : 0;
        catalogs.append(QJsonObject{{"name", text(catalog.place.name)},
                                    {"state", text(stateOf(catalog, report, failed))},
                                    {"status", numberOrNull(catalog.status)},
                                    {"bytes", static_cast<qint64>(report ? report->bytes : 0)},
                                    {"ms", static_cast<qint64>(catalog.milliseconds)}});
    }
    const QJsonObject result{{"outcome", outcome},         {"asked", asked},
                             {"fetched", fetched},         {"bytes", static_cast<qint64>(bytes)},
                             {"failed", failures(failed)}, {"catalogs", catalogs}};
    if (mNumber != 0)
        attempt([&] { RunRecords::end(mRoot, mNumber, QDateTime::currentDateTimeUtc(), result); });
}

} // namespace OrvHost
