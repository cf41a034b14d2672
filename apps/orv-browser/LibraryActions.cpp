// How it works: each action reads the settings anew, because another program may have changed them, and
// starts a controller, which works off the interface thread. A controller tells when it has ended; here that
// becomes a sentence for the foot of the window and a word to those who show catalogs. Both the quiet check
// at start and an update take the lock of the root: an update that is asked for cancels the check and begins
// when it has ended.
#include "apps/orv-browser/LibraryActions.h"

#include <utility>

#include <QFileDialog>
#include <QMessageBox>
#include <QUndoStack>

#include "OrvHost/update/HashFile.h"
#include "OrvLibrary/host/Curl.h"
#include "apps/orv-browser/Appearance.h"
#include "apps/orv-browser/activities/ImportCommand.h"
#include "apps/orv-browser/activities/ImportController.h"
#include "apps/orv-browser/activities/QuietCheck.h"
#include "apps/orv-browser/activities/UpdateController.h"
#include "apps/orv-browser/activities/UpdateSummary.h"
#include "apps/orv-browser/dialogs/AddressCheck.h"
#include "apps/orv-browser/dialogs/ManufacturerPreview.h"
#include "apps/orv-browser/dialogs/PreferencesDialog.h"
#include "apps/orv-browser/models/LibraryContent.h"
#include "apps/orv-browser/models/Reasons.h"

LibraryActions::LibraryActions(QMainWindow& window, const fileString& root, QUndoStack& undo)
    : QObject(&window),
      mWindow(window),
      mUndo(undo),
      mRoot(root),
      mShared(root),
      mUpdates(new UpdateController(window, root)),
      mQuietCheck(new QuietCheck(root, &window)),
      mImports(new ImportController(root, &window))
{
    readOwn(); // if it fails, the defaults apply
    Appearance::apply(mSettings.colours);
    connect(mUpdates, &UpdateController::catalogReplaced, this, &LibraryActions::catalogChanged);
    connect(mUpdates, &UpdateController::ended, this, &LibraryActions::updateEnded);
    connect(mUpdates, &UpdateController::refused, this, &LibraryActions::updateRefused);
    connect(mQuietCheck, &QuietCheck::ended, this, &LibraryActions::quietCheckEnded);
    connect(mImports, &ImportController::imported, this, &LibraryActions::archiveImported);
    connect(mImports, &ImportController::finished, this, &LibraryActions::importsEnded);
    connect(mImports, &ImportController::takenBack, this, &LibraryActions::importTakenBack);
}

void LibraryActions::start()
{
    const bool isWanted = mSettings.checkAtStart && mQuietCheck->isDue(mSettings.checkAgeHours);
    if (readShared() && isWanted && !mShared.values().url.empty())
        mQuietCheck->start(mShared.values());
}

/// Only one of the two can go on at a time.
void LibraryActions::quietCheckEnded()
{
    Q_EMIT checked();
    const std::optional<bool> wanted = std::exchange(mWanted, std::nullopt);
    if (wanted)
        update(*wanted);
}

bool LibraryActions::readShared()
{
    QString problem = mShared.reload();
    if (problem.isEmpty())
        problem = mShared.apply();
    if (!problem.isEmpty())
        Q_EMIT said(problem);
    return problem.isEmpty();
}

QString LibraryActions::readOwn()
try {
    mSettings = BrowserSettings::load(mRoot);
    return {};
} catch (const std::exception& error) {
    return Reasons::text(error.what());
}

void LibraryActions::cancel()
{
    mImports->cancel();
    mUpdates->cancel();
    mWanted.reset();
    mQuietCheck->cancel();
}

void LibraryActions::stop()
{
    mUpdates->stop();
    mQuietCheck->stop();
}

void LibraryActions::checkForUpdates()
{
    update(false);
}

void LibraryActions::updateOnMetered()
{
    update(true);
}

void LibraryActions::update(bool evenOnMetered)
{
    if (mUpdates->isRunning() || !readShared())
        return;
    if (mShared.values().url.empty())
        editPreferences();
    OrvHost::Settings::Values asked = mShared.values();
    if (asked.url.empty())
        return;
    asked.postponesOnMetered = asked.postponesOnMetered && !evenOnMetered;
    const QString problem = AddressCheck::problemOf(QString::fromStdString(asked.url));
    if (!problem.isEmpty()) {
        Q_EMIT said(problem);
        return;
    }
    if (mQuietCheck->isRunning()) {
        mWanted = evenOnMetered;
        mQuietCheck->cancel();
        return;
    }
    Curl::forgetFailures(); // the user may have repaired the network
    Q_EMIT runningChanged(true);
    Q_EMIT said(QString()); // the panel speaks now
    mUpdates->start(asked);
}

void LibraryActions::fetchWith(const SharedSettings::Changes& changes)
{
    QString reason;
    if (!changes.empty() && !mShared.change(changes, reason))
        Q_EMIT said(tr("The preferences were not saved: %1").arg(reason));
    else
        checkForUpdates();
}

/// Without its line in the hash file the service is asked for the catalog as if it were not there.
void LibraryActions::fetchAgain(const Place& catalog)
{
    if (mUpdates->isRunning())
        return;
    OrvHost::HashFile::remove(LibraryContent::folderOf(catalog.category),
                              catalog.database.stemWithExtension().toNativeString());
    checkForUpdates();
}

void LibraryActions::updateEnded(const UpdateSummary& summary)
{
    const QString text = summary.text();
    Q_EMIT runningChanged(false);
    Q_EMIT said(summary.hasProblems() ? text + QLatin1Char(' ') + tr("The log has the details.") : text);
    Q_EMIT foldersChanged();
}

void LibraryActions::updateRefused(const QString& reason)
{
    Q_EMIT runningChanged(false);
    Q_EMIT said(reason);
}

void LibraryActions::archiveImported(const OrvHost::ArchiveImport::Result& result)
{
    if (!result.library.empty())
        Q_EMIT catalogChanged(result.library);
    mUndo.push(new ImportCommand(*mImports, result));
}

void LibraryActions::importsEnded(const QString& summary)
{
    Q_EMIT importingChanged(false);
    Q_EMIT foldersChanged();
    Q_EMIT said(summary);
}

void LibraryActions::importTakenBack(const fileString& library, const QString& sentence)
{
    if (library.pathExists())
        Q_EMIT catalogChanged(library);
    Q_EMIT foldersChanged();
    Q_EMIT said(sentence);
}

void LibraryActions::openArchive()
{
    importArchives(QFileDialog::getOpenFileNames(&mWindow, tr("Import archives"), QString(),
                                                 tr("Library archives (*.orvlibz)")));
}

void LibraryActions::importArchives(const QStringList& sources)
{
    if (sources.isEmpty())
        return;
    Q_EMIT importingChanged(true);
    mImports->import(sources);
}

void LibraryActions::refreshManufacturers()
{
    if (!readShared())
        return;
    if (mShared.values().manufacturerDataUrl.empty())
        editPreferences();
    const OrvHost::Settings::Values asked = mShared.values();
    if (asked.manufacturerDataUrl.empty())
        return;
    Curl::forgetFailures(); // the user may have repaired the network
    ManufacturerPreview preview(QString::fromStdString(asked.manufacturerDataUrl),
                                QString::fromStdString(asked.manufacturerLogoUrl), &mWindow);
    if (preview.exec() != QDialog::Accepted)
        return;
    Q_EMIT said(preview.summary());
    Q_EMIT recordsChanged();
}

/// They lie in two files. Where only one of them can be written, it gets its former preferences back.
bool LibraryActions::savePreferences(const SharedSettings::Changes& changes, QString& reason)
try {
    const std::optional<std::string> former = BrowserSettings::textIn(mRoot);
    if (!mSettings.save(mRoot, reason))
        return false;
    if (mShared.change(changes, reason))
        return true;
    BrowserSettings::putBack(mRoot, former);
    return false;
} catch (const std::exception& error) {
    reason = Reasons::text(error.what());
    return false;
}

void LibraryActions::editPreferences()
{
    readShared();
    QString reason = readOwn();
    PreferencesDialog dialog(mShared.file(), mSettings, &mWindow);
    if (dialog.exec() != QDialog::Accepted)
        return;
    mSettings = dialog.own();
    Appearance::apply(mSettings.colours);
    // Settings that could not be read must not be replaced by the defaults that the dialog showed.
    if (!reason.isEmpty() || !savePreferences(dialog.changes(), reason))
        QMessageBox::warning(&mWindow, mWindow.windowTitle(),
                             tr("The preferences were not saved: %1").arg(reason));
    readShared();
    Curl::forgetFailures(); // another address or proxy may be the cure
}
