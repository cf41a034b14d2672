#pragma once

#include <QMainWindow>

#include "OrvLibrary/host/fileString.h"
#include "apps/orv-browser/BrowserSettings.h"

class DetailsPane;
class FilterBar;
class ImportController;
class SearchPane;
class StatusLine;
class TreePane;
class UpdateController;

/// The library browser: search, filter and tree at the left, the chosen item at the right, and at the bottom,
/// while something goes on, the progress panel. Lives on the interface thread.
class MainWindow : public QMainWindow
{
    Q_OBJECT

public:
    /// @param root the root of the well-known folders
    explicit MainWindow(const fileString& root);
    ~MainWindow() override;

    /// What the command line says goes before the preferences, for this run; empty texts change nothing.
    void overrideService(const QString& url, const QString& product, const QString& version);
    /// To be called once the window is shown: checks for updates when the preferences say so.
    void start();

protected:
    void closeEvent(QCloseEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dropEvent(QDropEvent* event) override;

private:
    void buildPanes();
    void buildMenus();
    void buildFileMenu();
    void buildLibraryMenu();
    void connectPanes();
    void connectControllers();
    /// The service to ask: the command line goes before the preferences.
    BrowserSettings service() const;
    void checkForUpdates();
    void showRunning(bool isRunning);
    void updateEnded(const QString& summary, bool hasProblems);
    void archiveImported(const QString& source, const fileString& library, const QString& problem);
    void itemsDropped(const fileString& database, const QString& problem);
    void openArchive();
    void importArchives(const QStringList& sources);
    void refreshManufacturers();
    void editFilters();
    void editPreferences();
    void showLog();

    fileString mRoot;
    BrowserSettings mSettings;  ///< the preferences
    BrowserSettings mOverrides; ///< what the command line says; empty texts for nothing
    QAction* mUpdateAction;
    QAction* mCancelAction;
    FilterBar* mFilters;
    SearchPane* mSearch;
    TreePane* mTree;
    DetailsPane* mDetails;
    StatusLine* mStatus;
    UpdateController* mUpdates;
    ImportController* mImports;
};
