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
#include "apps/orv-browser/activities/UpdateRequest.h"
#include "apps/orv-browser/activities/UpdateSummary.h"
#include "apps/orv-browser/activities/UpdateWatch.h"
#include "apps/orv-browser/models/Reasons.h"

namespace {

std::vector<OrvHost::ErrorLogEntry> logEntries()
{
    return OrvHost::ErrorLogReader::readIfPossible(Library::ErrorLog::file());
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
        mRun = std::make_unique<OrvHost::CatalogUpdateRun>(UpdateRequest::of(settings));
    } catch (const std::exception& error) {
        Q_EMIT refused(Reasons::text(error.what()));
        return;
    }
    mPanel = LibraryProgressPanel::create(&mWindow);
    mPanel->show();
    mReceiver = std::make_unique<UpdateReceiver>(mRun->swapper(), mPanel);
    mWatch = std::make_unique<UpdateWatch>(*mRun, *mReceiver);
    connectReceiver();
    Q_EMIT began(mPanel);
    mRun->start(*mReceiver);
}

void UpdateController::connectReceiver()
{
    connect(mReceiver.get(), &UpdateReceiver::catalogReplaced, this, &UpdateController::catalogReplaced);
    connect(mWatch.get(), &UpdateWatch::looked, this, &UpdateController::looked);
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
            notes << Reasons::text(note);
    } catch (const std::exception& error) {
        notes << tr("The update failed: %1").arg(Reasons::text(error.what()));
    }
    mWatch.reset();
    std::unique_ptr<OrvHost::CatalogUpdateRun> run = std::move(mRun);
    mReceiver.reset();
    closePanel();
    Q_EMIT ended(UpdateSummary(outcome, notes, mIsCancelled, mLogEntriesBefore), outcome);
    return run;
}

void UpdateController::closePanel()
{
    if (mPanel)
        mPanel->close(); // which deletes it
}
