#include "apps/orv-browser/activities/UpdateController.h"

#include <algorithm>

#include <QCoreApplication>
#include <QStringList>

#include "OrvHost/LegacyText.h"
#include "OrvHost/health/ErrorLogReader.h"
#include "OrvHost/update/CatalogUpdateRun.h"
#include "OrvLibrary/IO/ErrorLog.h"
#include "OrvLibrary/UI/qtLibraryProgressPanel.h"
#include "apps/orv-browser/activities/UpdateReceiver.h"
#include "apps/orv-browser/activities/UpdateWatch.h"

namespace {

constexpr int kMostNames = 5;

OrvHost::CatalogUpdateRun::Request requestOf(const OrvHost::Settings::Values& settings)
{
    OrvHost::CatalogUpdateRun::Request request;
    request.url = settings.url;
    request.product = settings.product;
    request.productVersion = settings.productVersion;
    request.bonus = settings.bonus;
    request.manufacturer = settings.manufacturer;
    request.access.certificates = settings.certificates;
    request.access.proxy = settings.proxy;
    request.access.limitRate = settings.limitRate;
    request.retries = settings.retries;
    request.history.versions = settings.historyVersions;
    request.history.bytes = settings.historyBytes;
    return request;
}

std::vector<OrvHost::ErrorLogEntry> logEntries()
{
    return OrvHost::ErrorLogReader::readIfPossible(Library::ErrorLog::file());
}

QString listed(const std::set<std::string>& names)
{
    QStringList list;
    for (const std::string& name : names)
        if (list.size() < kMostNames)
            list << QString::fromStdString(OrvHost::LegacyText::toUtf8(name));
    const int rest = static_cast<int>(names.size()) - static_cast<int>(list.size());
    const QString text = list.join(QStringLiteral(", "));
    return rest > 0 ? UpdateController::tr("%1 and %n more", nullptr, rest).arg(text) : text;
}

} // namespace

UpdateController::UpdateController(QMainWindow& window, const fileString& root)
    : QObject(&window), mWindow(window), mRoot(root)
{
}

UpdateController::~UpdateController()
{
    mWatch.reset();
    mRun.reset(); // waits for the worker, which still knows the receiver
}

void UpdateController::stop()
{
    if (!mRun)
        return;
    cancel();
    disconnect(mRun.get(), nullptr, this, nullptr); // it will say that it has ended, which is seen to here
    mRun->wait();
    QCoreApplication::sendPostedEvents(mReceiver.get(), QEvent::MetaCall);
    conclude();
}

void UpdateController::start(const OrvHost::Settings::Values& settings)
{
    if (mRun)
        return;
    mLogEntriesBefore = logEntries().size();
    mIsCancelled = false;
    try {
        mRun = std::make_unique<OrvHost::CatalogUpdateRun>(requestOf(settings));
    } catch (const std::exception& error) {
        Q_EMIT ended(QString::fromUtf8(error.what()), false);
        return;
    }
    mPanel = LibraryProgressPanel::create(&mWindow);
    mPanel->show();
    mReceiver = std::make_unique<UpdateReceiver>(mRun->swapper(), mPanel);
    mWatch = std::make_unique<UpdateWatch>(*mRun, *mReceiver);
    connectReceiver();
    mRun->start(*mReceiver);
}

void UpdateController::connectReceiver()
{
    connect(mReceiver.get(), &UpdateReceiver::catalogReplaced, this, &UpdateController::catalogReplaced);
    connect(mWatch.get(), &UpdateWatch::speedChanged, this, &UpdateController::speedChanged);
    connect(mRun.get(), &OrvHost::CatalogUpdateRun::finished, this, &UpdateController::runEnded);
}

void UpdateController::cancel()
{
    if (!mRun)
        return;
    mIsCancelled = true;
    OrvHost::CatalogUpdateRun::cancel();
}

void UpdateController::runEnded()
{
    conclude().release()->deleteLater(); // it is the sender
}

std::unique_ptr<OrvHost::CatalogUpdateRun> UpdateController::conclude()
{
    OrvHost::UpdateOutcome outcome;
    QStringList notes;
    try {
        outcome = mRun->finish(mReceiver->outcome(), mRoot);
        for (const std::string& note : outcome.notes)
            notes << QString::fromStdString(note);
    } catch (const std::exception& error) {
        notes << tr("The update failed: %1").arg(QString::fromUtf8(error.what()));
    }
    bool hasProblems = false;
    const QString summary = summaryOf(outcome, notes, hasProblems);
    mWatch.reset();
    std::unique_ptr<OrvHost::CatalogUpdateRun> run = std::move(mRun);
    mReceiver.reset();
    closePanel();
    Q_EMIT ended(summary, hasProblems);
    return run;
}

void UpdateController::closePanel()
{
    if (mPanel)
        mPanel->close(); // which deletes it
}

QString UpdateController::summaryOf(const OrvHost::UpdateOutcome& outcome, const QStringList& notes,
                                    bool& hasProblems) const
{
    using Kind = OrvHost::UpdateOutcome::Kind;
    // A request that the cancel ended looks like a failure to the run. The user knows better.
    const bool isCancelled =
        mIsCancelled ? !outcome.isGood() : outcome.kind == Kind::Cancelled && notes.isEmpty();
    const bool hasFailed = !isCancelled && (outcome.kind == Kind::Failed || outcome.kind == Kind::Incomplete);
    hasProblems = hasFailed || !notes.isEmpty();
    QStringList sentences;
    if (isCancelled)
        sentences << tr("The update was cancelled.");
    if (!outcome.updatedCatalogs.empty())
        sentences << tr("Updated: %1.").arg(listed(outcome.updatedCatalogs));
    if (outcome.kind == Kind::Current)
        sentences << tr("All catalogs are up to date.");
    if (hasFailed)
        sentences << problemText(outcome);
    return (sentences + notes).join(QLatin1Char(' '));
}

/// What went wrong; where the run itself does not know, with the first line that it added to the log.
QString UpdateController::problemText(const OrvHost::UpdateOutcome& outcome) const
{
    const OrvHost::ServiceReport& service = outcome.service;
    if (!service.verdict.empty())
        return QString::fromStdString(service.verdict) + QLatin1Char('.');
    if (service.endpoint.isAsked && !service.endpoint.isGood)
        return tr("The catalog service cannot be reached; the library stays as it is.");
    const QString problems = tr("Some catalogs could not be updated: %1");
    if (!outcome.failed.empty())
        return problems.arg(QString::fromStdString(outcome.failedText()) + QLatin1Char('.'));
    const auto entries = logEntries();
    if (entries.size() <= mLogEntriesBefore)
        return tr("Some catalogs could not be checked.");
    const QString reason =
        QString::fromStdString(OrvHost::LegacyText::toUtf8(entries[mLogEntriesBefore].message));
    return problems.arg(reason.section(QLatin1Char('\n'), 0, 0).simplified() + QLatin1Char('.'));
}
