// How it works: the controllers of updates and imports tell what they do; here that becomes rows of the list
// and, at the end, the card. Neither knows the other's rows.
#include "apps/orv-browser/activities/Activities.h"

#include <QAction>
#include <QFile>
#include <QFileInfo>
#include <QMouseEvent>
#include <QProgressBar>

#include "apps/orv-browser/LibraryActions.h"
#include "apps/orv-browser/activities/ActivityPane.h"
#include "apps/orv-browser/activities/ImportController.h"
#include "apps/orv-browser/activities/ResultCard.h"
#include "apps/orv-browser/activities/UpdateActivities.h"
#include "apps/orv-browser/activities/UpdateController.h"
#include "apps/orv-browser/activities/UpdateSummary.h"
#include "apps/orv-browser/models/Reasons.h"
#include "apps/orv-browser/models/UserLists.h"

namespace {

constexpr int kUnfoldMilliseconds = 200;

using Kind = Activity::Kind;
using State = Activity::State;

Activity importOf(const QString& source)
{
    Activity activity;
    activity.kind = Kind::Import;
    activity.key = source;
    activity.name = QFileInfo(source).fileName();
    return activity;
}

} // namespace

Activities::Activities(LibraryActions& library, const UserLists& lists, QAction& shown, QObject* parent)
    : QObject(parent),
      mLibrary(library),
      mLists(lists),
      mShown(shown),
      mPane(new ActivityPane),
      mModel(mPane->activities()),
      mCard(new ResultCard)
{
    mPane->hide();
    mUnfold.setSingleShot(true);
    mUnfold.setInterval(kUnfoldMilliseconds);
    connect(&mUnfold, &QTimer::timeout, this, [this] {
        mIsUnfolded = !mShown.isChecked();
        mShown.setChecked(true);
    });
    connect(&mShown, &QAction::toggled, mPane, &QWidget::setVisible);
    connect(&mShown, &QAction::triggered, this, [this] { mIsUnfolded = false; });
    connect(&mModel, &QAbstractItemModel::rowsInserted, this, [this] { mShown.setEnabled(true); });
    connect(mPane, &ActivityPane::retryAsked, this, &Activities::retry);
    connect(mCard, &ResultCard::retryAsked, this, &Activities::retryAll);
    connect(mCard, &ResultCard::fetchAsked, this, [this] {
        mCard->hide();
        mLibrary.updateOnMetered();
    });
    connect(mCard, &ResultCard::newsAsked, this, &Activities::newsAsked);
    connect(mCard, &ResultCard::logAsked, this, &Activities::logAsked);
    connectUpdates();
    connectImports();
}

void Activities::connectUpdates()
{
    UpdateController& updates = mLibrary.updates();
    connect(&updates, &UpdateController::began, this, [this](QWidget* panel) {
        mCard->hide();
        mModel.clear(Kind::Catalog);
        mInstalled.clear();
        panel->installEventFilter(this);
    });
    connect(&updates, &UpdateController::looked, this, &Activities::showService);
    connect(&updates, &UpdateController::catalogReplaced, this, [this](const fileString& database) {
        mInstalled.insert(database.stemWithExtension().toNativeString());
    });
    connect(&updates, &UpdateController::ended, this, &Activities::showUpdateEnd);
}

void Activities::connectImports()
{
    ImportController& imports = mLibrary.imports();
    connect(&imports, &ImportController::queued, this, [this](const QStringList& sources, bool isFirst) {
        if (isFirst) {
            mCard->hide();
            mModel.clear(Kind::Import);
            mUnfold.start();
        }
        for (const QString& source : sources)
            mModel.put(importOf(source));
    });
    connect(&imports, &ImportController::progressed, this,
            [this](const QString& source, const QString& step, qint64 done, qint64 whole) {
                Activity activity = importOf(source);
                activity.state = State::Running;
                activity.step = step;
                activity.done = done;
                activity.whole = whole;
                mModel.put(activity);
            });
    connect(&imports, &ImportController::ended, this, [this](const OrvHost::ArchiveImport::Result& result) {
        Activity activity = importOf(QFile::decodeName(result.source.c_str()));
        const State good = result.isCancelled ? State::Cancelled : State::Done;
        activity.state = result.isCancelled || result.error.empty() ? good : State::Failed;
        activity.reason = Reasons::text(result.error);
        mModel.put(activity);
    });
    connect(&imports, &ImportController::finished, this, &Activities::showImportsEnd);
}

void Activities::showService(const OrvHost::ServiceReport& service)
{
    for (const Activity& activity : UpdateActivities::of(service, mInstalled))
        mModel.put(activity);
}

void Activities::showUpdateEnd(const UpdateSummary& summary, const OrvHost::UpdateOutcome& outcome)
{
    showService(outcome.service);
    for (const Activity& failure : UpdateActivities::failuresOf(outcome))
        mModel.put(failure);
    // Catalogs that wait for another connection go on waiting.
    if (outcome.postponed.empty())
        mModel.settle(Kind::Catalog, summary.isCancelled() ? State::Cancelled : State::Done);
    mFailedImports.clear();
    // The first content of all is not new to the window.
    const bool isFirst = !mLists.seenRun();
    const bool hasNews = !isFirst && outcome.newItems + outcome.changedItems > 0;
    const QString numbers = summary.numbers(isFirst);
    if (summary.hasFailed())
        mCard->showFailure(
            numbers.isEmpty() ? summary.problem() : numbers + QLatin1Char('\n') + summary.problem(), hasNews);
    else if (!summary.waiting().isEmpty())
        mCard->showWaiting(summary.waiting());
    else if (!numbers.isEmpty())
        mCard->showGood(numbers, hasNews);
}

void Activities::showImportsEnd(const QString& summary, const QStringList& failed)
{
    mUnfold.stop();
    mModel.settle(Kind::Import, State::Cancelled);
    if (mIsUnfolded && failed.isEmpty())
        mShown.setChecked(false);
    mIsUnfolded = false;
    mFailedImports = failed;
    if (!failed.isEmpty())
        mCard->showFailure(summary, false);
}

/// An update fetches again whatever failed, and checks the rest.
void Activities::retry(const Activity& activity)
{
    if (activity.kind == Kind::Import)
        mLibrary.importArchives({activity.key});
    else
        mLibrary.checkForUpdates();
}

void Activities::retryAll()
{
    mCard->hide();
    if (mFailedImports.isEmpty())
        mLibrary.checkForUpdates();
    else
        mLibrary.importArchives(QStringList(mFailedImports));
}

bool Activities::eventFilter(QObject* watched, QEvent* event)
{
    const auto* panel = qobject_cast<QWidget*>(watched);
    const bool isClick = event->type() == QEvent::MouseButtonRelease;
    if (!panel || !isClick)
        return QObject::eventFilter(watched, event);
    const auto& click = *static_cast<QMouseEvent*>(event);
    // The gauge has a meaning of its own for clicks, and leaves them to the panel all the same.
    const bool isOnGauge = qobject_cast<QProgressBar*>(panel->childAt(click.pos())) != nullptr;
    if (click.button() == Qt::LeftButton && !isOnGauge && mShown.isEnabled())
        mShown.trigger();
    return false;
}
