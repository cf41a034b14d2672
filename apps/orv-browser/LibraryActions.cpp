#include "apps/orv-browser/LibraryActions.h"

#include <QFileDialog>
#include <QMessageBox>
#include <QUndoStack>

#include "OrvHost/update/HashFile.h"
#include "OrvLibrary/host/Curl.h"
#include "apps/orv-browser/Appearance.h"
#include "apps/orv-browser/activities/ImportCommand.h"
#include "apps/orv-browser/activities/ImportController.h"
#include "apps/orv-browser/activities/UpdateController.h"
#include "apps/orv-browser/dialogs/AddressCheck.h"
#include "apps/orv-browser/dialogs/ManufacturerPreview.h"
#include "apps/orv-browser/dialogs/PreferencesDialog.h"
#include "apps/orv-browser/models/LibraryContent.h"

LibraryActions::LibraryActions(QMainWindow& window, const fileString& root, QUndoStack& undo)
    : QObject(&window),
      mWindow(window),
      mUndo(undo),
      mRoot(root),
      mSettings(BrowserSettings::load(root)),
      mUpdates(new UpdateController(window, root)),
      mImports(new ImportController(root, &window))
{
    Curl::setProxy(mSettings.proxy.toStdString());
    Appearance::apply(mSettings.colours);
    connect(mUpdates, &UpdateController::catalogReplaced, this, &LibraryActions::catalogChanged);
    connect(mUpdates, &UpdateController::ended, this, &LibraryActions::updateEnded);
    connect(mImports, &ImportController::imported, this, &LibraryActions::archiveImported);
    connect(mImports, &ImportController::finished, this, &LibraryActions::importsEnded);
    connect(mImports, &ImportController::takenBack, this, &LibraryActions::importTakenBack);
}

void LibraryActions::start()
{
    if (mSettings.checkAtStart && !mOverrides.over(mSettings).serviceUrl.isEmpty())
        checkForUpdates();
}

void LibraryActions::cancel()
{
    mImports->cancel();
    mUpdates->cancel();
}

void LibraryActions::stop()
{
    mUpdates->stop();
}

void LibraryActions::checkForUpdates()
{
    if (mUpdates->isRunning())
        return;
    if (mOverrides.over(mSettings).serviceUrl.isEmpty())
        editPreferences();
    const BrowserSettings asked = mOverrides.over(mSettings);
    if (asked.serviceUrl.isEmpty())
        return;
    const QString problem = AddressCheck::problemOf(asked.serviceUrl);
    if (!problem.isEmpty()) {
        Q_EMIT said(problem);
        return;
    }
    Curl::forgetFailures(); // the user may have repaired the network
    Q_EMIT runningChanged(true);
    Q_EMIT said(QString()); // the panel speaks now
    mUpdates->start(asked);
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

void LibraryActions::updateEnded(const QString& summary, bool hasProblems)
{
    Q_EMIT runningChanged(false);
    Q_EMIT said(hasProblems ? summary + QLatin1Char(' ') + tr("The log has the details.") : summary);
    Q_EMIT foldersChanged();
}

void LibraryActions::archiveImported(const OrvHost::ArchiveImport::Result& result)
{
    if (!result.library.empty())
        Q_EMIT catalogChanged(result.library);
    mUndo.push(new ImportCommand(*mImports, result));
}

void LibraryActions::importsEnded(const QString& summary)
{
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
    if (!sources.isEmpty())
        mImports->import(sources);
}

void LibraryActions::refreshManufacturers()
{
    if (mSettings.manufacturerDataUrl.isEmpty()) {
        editPreferences();
        if (mSettings.manufacturerDataUrl.isEmpty())
            return;
    }
    Curl::forgetFailures(); // the user may have repaired the network
    ManufacturerPreview preview(mSettings.manufacturerDataUrl, mSettings.manufacturerLogoUrl, &mWindow);
    if (preview.exec() != QDialog::Accepted)
        return;
    Q_EMIT said(preview.summary());
    Q_EMIT recordsChanged();
}

void LibraryActions::editFilters(const std::vector<FilterEditor::Database>& databases)
{
    FilterEditor editor(databases, &mWindow);
    if (editor.exec() == QDialog::Accepted)
        Q_EMIT filtersChanged();
}

void LibraryActions::editPreferences()
{
    PreferencesDialog dialog(mSettings, &mWindow);
    if (dialog.exec() != QDialog::Accepted)
        return;
    mSettings = dialog.settings();
    Curl::setProxy(mSettings.proxy.toStdString());
    Curl::forgetFailures(); // another address or proxy may be the cure
    Appearance::apply(mSettings.colours);
    QString reason;
    if (!mSettings.save(mRoot, reason))
        QMessageBox::warning(&mWindow, mWindow.windowTitle(),
                             tr("The preferences were not saved: %1").arg(reason));
}
