#include "apps/orv-browser/activities/UpdateSummary.h"

#include <set>

#include "OrvHost/LegacyText.h"
#include "OrvHost/health/ErrorLogReader.h"
#include "OrvLibrary/IO/ErrorLog.h"
#include "apps/orv-browser/models/DataSize.h"
#include "apps/orv-browser/models/Reasons.h"

namespace {

using Kind = OrvHost::UpdateOutcome::Kind;

constexpr int kMostNames = 5;
constexpr int kMostFailures = 5;

QString listed(const std::set<std::string>& names)
{
    QStringList list;
    for (const std::string& name : names)
        if (list.size() < kMostNames)
            list << QString::fromStdString(OrvHost::LegacyText::toUtf8(name));
    const int rest = static_cast<int>(names.size()) - static_cast<int>(list.size());
    const QString text = list.join(QStringLiteral(", "));
    return rest > 0 ? UpdateSummary::tr("%1 and %n more", nullptr, rest).arg(text) : text;
}

/// The names of the new catalogs. The library reports them at the end only, and not after a cancel, so those
/// that were put into place by then are added.
std::set<std::string> updatedOf(const OrvHost::UpdateOutcome& outcome)
{
    std::set<std::string> names = outcome.updatedCatalogs;
    if (names.empty())
        for (const fileString& catalog : outcome.swappedIn)
            names.insert(catalog.stem().toNativeString());
    return names;
}

} // namespace

// A request that the cancel ended looks like a failure to the run. The user knows better.
UpdateSummary::UpdateSummary(const OrvHost::UpdateOutcome& outcome, const QStringList& notes,
                             bool isCancelled, std::size_t logEntriesBefore)
    : mOutcome(outcome),
      mUpdated(updatedOf(outcome)),
      mNotes(notes),
      mIsCancelled(isCancelled ? !outcome.isGood() : outcome.kind == Kind::Cancelled && notes.isEmpty()),
      mHasFailed(!mIsCancelled && (outcome.kind == Kind::Failed || outcome.kind == Kind::Incomplete)),
      mLogEntriesBefore(logEntriesBefore)
{
}

QString UpdateSummary::text() const
{
    QStringList sentences;
    if (mIsCancelled)
        sentences << tr("The update was cancelled.");
    if (!mUpdated.empty())
        sentences << tr("Updated: %1.").arg(listed(mUpdated));
    if (mOutcome.kind == Kind::Current)
        sentences << tr("All catalogs are up to date.");
    if (!mOutcome.postponed.empty() && !mIsCancelled)
        sentences << waiting();
    if (mHasFailed)
        sentences << problem();
    return (sentences + mNotes).join(QLatin1Char(' '));
}

QString UpdateSummary::waiting() const
{
    if (mOutcome.postponed.empty())
        return {};
    qint64 bytes = 0;
    for (const auto& catalog : mOutcome.postponed)
        bytes += catalog.bytes.value_or(0);
    return tr("The connection is metered, so %Ln update(s) wait: %1.", nullptr,
              static_cast<int>(mOutcome.postponed.size()))
        .arg(DataSize::text(bytes));
}

QString UpdateSummary::numbers(bool isFirst) const
{
    const auto number = [](std::size_t count) { return static_cast<int>(count); };
    if (mUpdated.empty())
        return {};
    QStringList parts{tr("%Ln catalog(s)", nullptr, number(mUpdated.size()))};
    if (isFirst)
        parts << tr("%Ln item(s)", nullptr, number(mOutcome.newItems));
    else if (mOutcome.newItems > 0)
        parts << tr("%Ln new item(s)", nullptr, number(mOutcome.newItems));
    if (mOutcome.changedItems > 0)
        parts << tr("%Ln changed", nullptr, number(mOutcome.changedItems));
    if (mOutcome.goneItems > 0)
        parts << tr("%Ln gone", nullptr, number(mOutcome.goneItems));
    return parts.join(tr(", "));
}

/// Each failure with its reason; the last ones are counted where there are many.
QString UpdateSummary::failures() const
{
    QStringList parts;
    for (const OrvHost::UpdateOutcome::Failure& failure : mOutcome.failed) {
        const QString what =
            failure.catalog ? QString::fromStdString(*failure.catalog) : tr("the content index");
        if (parts.size() < kMostFailures)
            parts << tr("%1: %2").arg(what, Reasons::text(failure.reason));
    }
    const int rest = static_cast<int>(mOutcome.failed.size()) - static_cast<int>(parts.size());
    if (rest > 0)
        parts << tr("and %n more", nullptr, rest);
    return parts.join(QStringLiteral("; "));
}

QString UpdateSummary::problem() const
{
    const OrvHost::ServiceReport& service = mOutcome.service;
    if (!service.verdict.empty())
        return Reasons::text(service.verdict) + QLatin1Char('.');
    if (service.endpoint.isAsked && !service.endpoint.isGood)
        return tr("The catalog service cannot be reached; the library stays as it is.");
    const QString problems = tr("Some catalogs could not be updated: %1");
    if (!mOutcome.failed.empty())
        return problems.arg(failures() + QLatin1Char('.'));
    const auto entries = OrvHost::ErrorLogReader::readIfPossible(Library::ErrorLog::file());
    if (entries.size() <= mLogEntriesBefore)
        return tr("Some catalogs could not be checked.");
    const QString reason =
        QString::fromStdString(OrvHost::LegacyText::toUtf8(entries[mLogEntriesBefore].message));
    return problems.arg(Reasons::text(reason.section(QLatin1Char('\n'), 0, 0).simplified()) +
                        QLatin1Char('.'));
}
