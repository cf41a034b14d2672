#pragma once

#include <optional>

#include <QMainWindow>
#include <QObject>

#include "OrvHost/imports/ArchiveImport.h"
#include "OrvLibrary/host/fileString.h"
#include "apps/orv-browser/BrowserSettings.h"
#include "apps/orv-browser/SharedSettings.h"
#include "apps/orv-browser/models/Place.h"

class ImportController;
class QuietCheck;
class QUndoStack;
class UpdateController;
class UpdateSummary;

/// The user's actions on the library as a whole: updates, imports, manufacturer records, filters and
/// preferences. Lives on the interface thread, as long as the window.
class LibraryActions : public QObject
{
    Q_OBJECT

public:
    /// @param root the root of the well-known folders
    /// @param undo takes the imports that can be taken back; belongs to the window too
    LibraryActions(QMainWindow& window, const fileString& root, QUndoStack& undo);

    /// From now on, these values take precedence over the settings.
    void overrideService(const ServiceOverrides& overrides) { mShared.overrideService(overrides); }
    const ServiceOverrides& overrides() const { return mShared.overrides(); }
    /// Reads the settings anew, and tells the user why where that cannot be.
    /// @return whether they can be used
    bool readShared();
    /// The settings in force, as they were read last.
    OrvHost::Settings::Values settings() const { return mShared.values(); }
    /// Looks what is new, without a word, when the preferences say so and nobody has looked of late.
    void start();
    /// Cancels whatever is under way, without waiting for it.
    void cancel();
    /// Waits for an update that was cancelled, while there still is a window to tell.
    void stop();

    UpdateController& updates() { return *mUpdates; }
    ImportController& imports() { return *mImports; }
    void checkForUpdates();
    /// The same, and fetches what is new although the connection is metered.
    void updateOnMetered();
    /// Changes settings, and checks for updates with them.
    void fetchWith(const SharedSettings::Changes& changes);
    /// Fetches a catalog of the service again, whatever is installed, and checks the others.
    void fetchAgain(const Place& catalog);
    void openArchive();
    void importArchives(const QStringList& sources);
    void refreshManufacturers();
    void editPreferences();

Q_SIGNALS:
    /// A catalog file was replaced.
    void catalogChanged(const fileString& database);
    /// Catalogs may have come or gone.
    void foldersChanged();
    /// It may be known now what waits.
    void checked();
    void runningChanged(bool isRunning);
    void importingChanged(bool isImporting);
    /// A sentence for people on how something ended; empty for silence.
    void said(const QString& sentence);
    void recordsChanged();

private:
    /// @return why the window's own settings cannot be read, for people; empty when they can
    QString readOwn();
    bool savePreferences(const SharedSettings::Changes& changes, QString& reason);
    void quietCheckEnded();
    void update(bool evenOnMetered);
    void updateEnded(const UpdateSummary& summary);
    void updateRefused(const QString& reason);
    void archiveImported(const OrvHost::ArchiveImport::Result& result);
    void importsEnded(const QString& summary);
    void importTakenBack(const fileString& library, const QString& sentence);

    QMainWindow& mWindow;
    QUndoStack& mUndo;
    fileString mRoot;
    BrowserSettings mSettings; ///< of this window
    SharedSettings mShared;
    UpdateController* mUpdates;
    QuietCheck* mQuietCheck;
    std::optional<bool> mWanted; ///< the update that waits for the quiet check: whether on metered, too
    ImportController* mImports;
};
