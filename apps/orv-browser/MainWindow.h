#pragma once

#include <QMainWindow>

#include "OrvLibrary/host/fileString.h"
#include "apps/orv-browser/BrowserSettings.h"

class DetailsPane;
class FilterBar;
class ImportController;
class MessageBar;
class SearchPane;
class StatusLine;
class TreePane;
class UpdateController;
class WindowMessages;

/// The library browser: search, filter and tree at the left, the chosen item at the right, at the top what
/// the library has to tell, and at the bottom, while something goes on, the progress panel. Lives on the
/// interface thread.
class MainWindow : public QMainWindow
{
    Q_OBJECT

public:
    /// @param root the root of the well-known folders
    /// @param messages what the library tells; outlives the window
    MainWindow(const fileString& root, WindowMessages& messages);
    ~MainWindow() override;

    /// What goes before the preferences from now on.
    void overrideService(const ServiceOverrides& overrides) { mOverrides = overrides; }
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
    BrowserSettings mSettings; ///< the preferences
    ServiceOverrides mOverrides;
    QAction* mUpdateAction;
    QAction* mCancelAction;
    MessageBar* mMessages;
    FilterBar* mFilters;
    SearchPane* mSearch;
    TreePane* mTree;
    DetailsPane* mDetails;
    StatusLine* mStatus;
    UpdateController* mUpdates;
    ImportController* mImports;
};
