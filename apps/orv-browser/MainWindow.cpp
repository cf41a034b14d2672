#include "apps/orv-browser/MainWindow.h"

#include <QAction>
#include <QCloseEvent>
#include <QDragEnterEvent>
#include <QFileDialog>
#include <QMenuBar>
#include <QMessageBox>
#include <QMimeData>
#include <QSplitter>
#include <QUrl>
#include <QVBoxLayout>

#include "OrvLibrary/IO/ErrorLog.h"
#include "OrvLibrary/host/Curl.h"
#include "apps/orv-browser/Appearance.h"
#include "apps/orv-browser/activities/ImportController.h"
#include "apps/orv-browser/activities/MessageBar.h"
#include "apps/orv-browser/activities/StatusLine.h"
#include "apps/orv-browser/activities/UpdateController.h"
#include "apps/orv-browser/activities/WindowMessages.h"
#include "apps/orv-browser/details/DetailsPane.h"
#include "apps/orv-browser/dialogs/FilterEditor.h"
#include "apps/orv-browser/dialogs/LogDialog.h"
#include "apps/orv-browser/dialogs/ManufacturerPreview.h"
#include "apps/orv-browser/dialogs/PreferencesDialog.h"
#include "apps/orv-browser/gallery/SearchPane.h"
#include "apps/orv-browser/places/FilterBar.h"
#include "apps/orv-browser/places/TreePane.h"

namespace {

constexpr int kTreeWidth = 540; // pixels, to begin with
constexpr int kDetailsWidth = 400;
constexpr int kHeight = 660;

QStringList droppedSources(const QMimeData& data)
{
    QStringList sources;
    for (const QUrl& url : data.urls()) {
        const QString source = url.isLocalFile() ? url.toLocalFile() : url.toString();
        if (source.endsWith(QLatin1String(".orvlibz")))
            sources << source;
    }
    return sources;
}

} // namespace

MainWindow::MainWindow(const fileString& root, WindowMessages& messages)
    : mRoot(root),
      mSettings(BrowserSettings::load(root)),
      mUpdateAction(new QAction(tr("Check for &updates"), this)),
      mCancelAction(new QAction(tr("&Cancel the update"), this)),
      mMessages(new MessageBar(messages)),
      mFilters(new FilterBar),
      mSearch(new SearchPane),
      mTree(new TreePane),
      mDetails(new DetailsPane),
      mStatus(new StatusLine(*mUpdateAction, this)),
      mUpdates(new UpdateController(*this, root)),
      mImports(new ImportController(root, this))
{
    Curl::setProxy(mSettings.proxy.toStdString());
    Appearance::apply(mSettings.colours);
    setObjectName(QStringLiteral("libraryBrowser"));
    setWindowTitle(tr("Library"));
    setAcceptDrops(true);
    resize(kTreeWidth + kDetailsWidth, kHeight);
    buildPanes();
    buildMenus();
    connectPanes();
    connectControllers();
    mFilters->fill();
    mTree->refresh();
}

MainWindow::~MainWindow()
{
    mUpdates->stop(); // while there is a window to tell
}

void MainWindow::buildPanes()
{
    auto* left = new QWidget;
    auto* leftLayout = new QVBoxLayout(left);
    leftLayout->addWidget(mFilters);
    leftLayout->addWidget(mSearch);
    leftLayout->addWidget(mTree, 1);

    auto* panes = new QSplitter(Qt::Horizontal);
    panes->addWidget(left);
    panes->addWidget(mDetails);
    panes->setStretchFactor(0, 3);
    panes->setStretchFactor(1, 2);
    panes->setSizes({kTreeWidth, kDetailsWidth});
    panes->setChildrenCollapsible(false);
    auto* main = new QSplitter(Qt::Vertical);
    main->setObjectName(QStringLiteral("libMainSplitter")); // where the progress panel docks
    main->addWidget(panes);
    main->setChildrenCollapsible(false);

    auto* content = new QWidget;
    auto* layout = new QVBoxLayout(content);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(mMessages);
    layout->addWidget(main, 1);
    setCentralWidget(content);
    setStatusBar(mStatus);
}

void MainWindow::buildMenus()
{
    mUpdateAction->setObjectName(QStringLiteral("checkForUpdates"));
    mUpdateAction->setShortcut(QKeySequence(Qt::CTRL + Qt::Key_U));
    mCancelAction->setObjectName(QStringLiteral("cancelUpdate"));
    mCancelAction->setShortcut(QKeySequence(Qt::CTRL + Qt::Key_Period));
    mCancelAction->setEnabled(false);
    buildFileMenu();
    buildLibraryMenu();
}

void MainWindow::buildFileMenu()
{
    QMenu* file = menuBar()->addMenu(tr("&File"));
    file->addAction(tr("&Import archive…"), this, &MainWindow::openArchive, QKeySequence::Open)
        ->setObjectName(QStringLiteral("importArchive"));
    file->addSeparator();
    file->addAction(tr("&Preferences…"), this, &MainWindow::editPreferences,
                    QKeySequence(Qt::CTRL + Qt::Key_Comma))
        ->setObjectName(QStringLiteral("editPreferences"));
    file->addSeparator();
    file->addAction(tr("&Quit"), this, &QWidget::close, QKeySequence::Quit);
}

void MainWindow::buildLibraryMenu()
{
    QMenu* library = menuBar()->addMenu(tr("&Library"));
    library->addAction(mUpdateAction);
    library->addAction(mCancelAction);
    library->addAction(tr("Refresh &manufacturers…"), this, &MainWindow::refreshManufacturers)
        ->setObjectName(QStringLiteral("refreshManufacturers"));
    library->addSeparator();
    library->addAction(tr("&Search"), mSearch, &SearchPane::focusField, QKeySequence::Find);
    library->addAction(tr("Edit &filters…"), this, &MainWindow::editFilters)
        ->setObjectName(QStringLiteral("editFilters"));
    library->addAction(tr("Show the &log"), this, &MainWindow::showLog, QKeySequence(Qt::CTRL + Qt::Key_L))
        ->setObjectName(QStringLiteral("showLog"));
}

void MainWindow::connectPanes()
{
    connect(mFilters, &FilterBar::chosen, mTree, &TreePane::applyFilter);
    connect(mFilters, &FilterBar::editAsked, this, &MainWindow::editFilters);
    connect(mSearch, &SearchPane::activeChanged, mTree,
            [this](bool isActive) { mTree->setVisible(!isActive); });
    connect(mSearch, &SearchPane::chosen, mDetails, &DetailsPane::showChosen);
    connect(mTree, &TreePane::itemChosen, mDetails, &DetailsPane::showChosen);
    connect(mTree, &TreePane::shownChanged, mSearch, &SearchPane::setSources);
    connect(mTree, &TreePane::dropped, this, &MainWindow::itemsDropped);
    connect(mTree, &TreePane::fetchAsked, this, &MainWindow::checkForUpdates);
    connect(mTree, &TreePane::importAsked, this, &MainWindow::openArchive);
}

void MainWindow::connectControllers()
{
    connect(mUpdateAction, &QAction::triggered, this, &MainWindow::checkForUpdates);
    connect(mCancelAction, &QAction::triggered, mUpdates, &UpdateController::cancel);
    connect(mStatus, &StatusLine::cancelAsked, mUpdates, &UpdateController::cancel);
    connect(mStatus, &StatusLine::logAsked, this, &MainWindow::showLog);
    connect(mUpdates, &UpdateController::catalogReplaced, mTree, &TreePane::reload);
    connect(mUpdates, &UpdateController::speedChanged, mStatus, &StatusLine::showSpeed);
    connect(mUpdates, &UpdateController::ended, this, &MainWindow::updateEnded);
    connect(mImports, &ImportController::imported, this, &MainWindow::archiveImported);
    connect(mImports, &ImportController::finished, mTree, &TreePane::refresh);
}

void MainWindow::start()
{
    if (mSettings.checkAtStart && !mOverrides.over(mSettings).serviceUrl.isEmpty())
        checkForUpdates();
}

void MainWindow::checkForUpdates()
{
    if (mUpdates->isRunning())
        return;
    if (mOverrides.over(mSettings).serviceUrl.isEmpty())
        editPreferences();
    const BrowserSettings asked = mOverrides.over(mSettings);
    if (asked.serviceUrl.isEmpty())
        return;
    showRunning(true);
    mStatus->say(QString()); // the panel speaks now
    mUpdates->start(asked);
}

void MainWindow::showRunning(bool isRunning)
{
    mUpdateAction->setEnabled(!isRunning);
    mCancelAction->setEnabled(isRunning);
    mStatus->showRunning(isRunning);
}

void MainWindow::updateEnded(const QString& summary, bool hasProblems)
{
    showRunning(false);
    mStatus->say(hasProblems ? summary + QLatin1Char(' ') + tr("The log has the details.") : summary);
    mTree->refresh();
}

void MainWindow::archiveImported(const QString& source, const fileString& library, const QString& problem)
{
    const QString name = QFileInfo(source).fileName();
    if (!library.empty())
        mTree->reload(library);
    mStatus->say(problem.isEmpty() ? tr("%1 was imported.").arg(name)
                                   : tr("%1 was not imported: %2").arg(name, problem));
}

void MainWindow::itemsDropped(const fileString& database, const QString& problem)
{
    mTree->reload(database);
    const QString name = QString::fromStdString(database.stem().toNativeString());
    mStatus->say(problem.isEmpty() ? tr("Copied to %1.").arg(name)
                                   : tr("Not copied to %1: %2").arg(name, problem));
}

void MainWindow::openArchive()
{
    importArchives(QFileDialog::getOpenFileNames(this, tr("Import archives"), QString(),
                                                 tr("Library archives (*.orvlibz)")));
}

void MainWindow::importArchives(const QStringList& sources)
{
    if (!sources.isEmpty())
        mImports->import(sources);
}

void MainWindow::refreshManufacturers()
{
    if (mSettings.manufacturerDataUrl.isEmpty()) {
        editPreferences();
        if (mSettings.manufacturerDataUrl.isEmpty())
            return;
    }
    ManufacturerPreview preview(mSettings.manufacturerDataUrl, mSettings.manufacturerLogoUrl, this);
    if (preview.exec() == QDialog::Accepted) {
        mStatus->say(preview.summary());
        mDetails->showChosen();
    }
}

void MainWindow::editFilters()
{
    FilterEditor editor(mTree->databases(), this);
    if (editor.exec() == QDialog::Accepted) {
        mFilters->fill();
        mTree->applyFilter();
    }
}

void MainWindow::editPreferences()
{
    PreferencesDialog dialog(mSettings, this);
    if (dialog.exec() != QDialog::Accepted)
        return;
    mSettings = dialog.settings();
    Curl::setProxy(mSettings.proxy.toStdString());
    Appearance::apply(mSettings.colours);
    QString reason;
    if (!mSettings.save(mRoot, reason))
        QMessageBox::warning(this, windowTitle(), tr("The preferences were not saved: %1").arg(reason));
}

void MainWindow::showLog()
{
    LogDialog(Library::ErrorLog::file(), this).exec();
}

void MainWindow::closeEvent(QCloseEvent* event)
{
    mImports->cancel();
    mUpdates->cancel();
    QMainWindow::closeEvent(event);
}

void MainWindow::dragEnterEvent(QDragEnterEvent* event)
{
    if (!droppedSources(*event->mimeData()).isEmpty())
        event->acceptProposedAction();
}

void MainWindow::dropEvent(QDropEvent* event)
{
    event->acceptProposedAction();
    importArchives(droppedSources(*event->mimeData()));
}
