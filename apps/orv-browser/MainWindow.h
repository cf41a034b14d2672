#pragma once

#include <QMainWindow>

#include "OrvLibrary/host/fileString.h"
#include "apps/orv-browser/BrowserSettings.h"

class DetailsPane;
class LibraryModel;
class SearchPane;
class TreePlace;
class UpdateController;
class ImportController;
class QComboBox;
class QLabel;
class QStackedWidget;
class QToolButton;
class QTreeView;

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
    /// To be called once the window is shown: offers to fetch content when there is none, and checks for
    /// updates when the preferences say so.
    void start();

protected:
    void closeEvent(QCloseEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dropEvent(QDropEvent* event) override;

private:
    void buildPanes();
    void buildMenus();
    void connectTree();
    void refreshTree();
    void fillFilters();
    void chooseFilter(int index);
    void applyFilter();
    void chooseCurrent();
    /// The service to ask: the command line goes before the preferences.
    BrowserSettings service() const;
    void checkForUpdates();
    void showRunning(bool isRunning);
    void updateEnded(const QString& summary, bool hasProblems);
    void catalogReplaced(const fileString& database);
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
    LibraryModel* mModel;
    QTreeView* mTree;
    TreePlace* mPlace = nullptr;
    SearchPane* mSearch;
    QComboBox* mFilter;
    DetailsPane* mDetails;
    QStackedWidget* mTreeOrOffer;
    QLabel* mSummary;
    QLabel* mSpeed;
    QToolButton* mUpdate;
    QToolButton* mCancel;
    QAction* mUpdateAction = nullptr;
    QAction* mCancelAction = nullptr;
    UpdateController* mUpdates;
    ImportController* mImports;
};
