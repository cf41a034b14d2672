#include "apps/orv-browser/MainWindow.h"

#include <QAction>
#include <QCloseEvent>
#include <QComboBox>
#include <QDesktopServices>
#include <QDragEnterEvent>
#include <QFile>
#include <QFileDialog>
#include <QLabel>
#include <QMenuBar>
#include <QMessageBox>
#include <QMimeData>
#include <QPushButton>
#include <QSplitter>
#include <QStackedWidget>
#include <QStatusBar>
#include <QToolButton>
#include <QTreeView>
#include <QUrl>
#include <QVBoxLayout>

#include "OrvLibrary/IO/ErrorLog.h"
#include "OrvLibrary/LibraryFilterManager.h"
#include "OrvLibrary/UI/TreeItemData.h"
#include "OrvLibrary/Utility/Chooser.h"
#include "OrvLibrary/host/Curl.h"
#include "apps/orv-browser/Appearance.h"
#include "apps/orv-browser/CatalogDatabase.h"
#include "apps/orv-browser/DetailsPane.h"
#include "apps/orv-browser/FilterEditor.h"
#include "apps/orv-browser/ImportController.h"
#include "apps/orv-browser/LibraryModel.h"
#include "apps/orv-browser/LogDialog.h"
#include "apps/orv-browser/ManufacturerPreview.h"
#include "apps/orv-browser/PreferencesDialog.h"
#include "apps/orv-browser/SearchPane.h"
#include "apps/orv-browser/TreePlace.h"
#include "apps/orv-browser/UpdateController.h"

namespace {

constexpr int kTreePage = 0;
constexpr int kOfferPage = 1;
constexpr int kSummaryMargin = 7; // pixels; in line with the panes

/// The category by its position in the choice of the search.
int positionOf(const QModelIndex& category)
{
    return category.row();
}

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

MainWindow::MainWindow(const fileString& root)
    : mRoot(root),
      mSettings(BrowserSettings::load(root)),
      mModel(new LibraryModel(this)),
      mTree(new QTreeView),
      mSearch(new SearchPane),
      mFilter(new QComboBox),
      mDetails(new DetailsPane),
      mTreeOrOffer(new QStackedWidget),
      mSummary(new QLabel),
      mSpeed(new QLabel),
      mUpdate(new QToolButton),
      mCancel(new QToolButton),
      mUpdates(new UpdateController(*this, root)),
      mImports(new ImportController(this))
{
    Curl::setProxy(mSettings.proxy.toStdString());
    Appearance::apply(mSettings.colours);
    setObjectName(QStringLiteral("libraryBrowser"));
    setWindowTitle(tr("Library"));
    setAcceptDrops(true);
    resize(900, 640);
    buildPanes();
    buildMenus();
    connectTree();
    connect(mUpdates, &UpdateController::catalogReplaced, this, &MainWindow::catalogReplaced);
    connect(mUpdates, &UpdateController::speedChanged, mSpeed, &QLabel::setText);
    connect(mUpdates, &UpdateController::ended, this, &MainWindow::updateEnded);
    connect(mImports, &ImportController::imported, this,
            [this](const QString& source, const fileString& library, const QString& problem) {
                const QString name = QFileInfo(source).fileName();
                if (!library.empty())
                    catalogReplaced(library);
                mSummary->setText(problem.isEmpty() ? tr("%1 was imported.").arg(name)
                                                    : tr("%1 was not imported: %2").arg(name, problem));
            });
    connect(mImports, &ImportController::finished, this, &MainWindow::refreshTree);
    fillFilters();
    refreshTree();
}

MainWindow::~MainWindow()
{
    mUpdates->stop(); // while there is a window to tell
}

void MainWindow::overrideService(const QString& url, const QString& product, const QString& version)
{
    mOverrides.serviceUrl = url;
    mOverrides.product = product;
    mOverrides.productVersion = version;
}

BrowserSettings MainWindow::service() const
{
    BrowserSettings service = mSettings;
    if (!mOverrides.serviceUrl.isEmpty())
        service.serviceUrl = mOverrides.serviceUrl;
    if (!mOverrides.product.isEmpty())
        service.product = mOverrides.product;
    if (!mOverrides.productVersion.isEmpty())
        service.productVersion = mOverrides.productVersion;
    return service;
}

void MainWindow::start()
{
    if (mSettings.checkAtStart && !service().serviceUrl.isEmpty())
        checkForUpdates();
}

void MainWindow::buildPanes()
{
    auto* filterLine = new QWidget;
    auto* filterLayout = new QHBoxLayout(filterLine);
    filterLayout->setContentsMargins(0, 0, 0, 0);
    mFilter->setObjectName(QStringLiteral("filterChoice"));
    mFilter->setAccessibleName(tr("Filter"));
    auto* editFilter = new QToolButton;
    editFilter->setObjectName(QStringLiteral("editFilters"));
    editFilter->setText(tr("Edit…"));
    editFilter->setAccessibleName(tr("Edit the filters"));
    connect(editFilter, &QToolButton::clicked, this, &MainWindow::editFilters);
    filterLayout->addWidget(mFilter, 1);
    filterLayout->addWidget(editFilter);

    mTree->setObjectName(QStringLiteral("libraryTree"));
    mTree->setAccessibleName(tr("Library content"));
    mTree->setModel(mModel);
    mTree->setHeaderHidden(true);
    mTree->setUniformRowHeights(true);
    mTree->setIconSize({24, 24});
    mTree->setDragDropMode(QAbstractItemView::DragDrop);
    mTree->setDefaultDropAction(Qt::CopyAction);
    mTree->setEditTriggers(QAbstractItemView::NoEditTriggers);
    mPlace = new TreePlace(*mTree, *mModel);

    auto* offer = new QWidget;
    auto* offerLayout = new QVBoxLayout(offer);
    auto* offerText = new QLabel(tr("The library is empty."));
    offerText->setAlignment(Qt::AlignCenter);
    auto* fetch = new QPushButton(tr("Fetch the content"));
    fetch->setObjectName(QStringLiteral("fetchContent"));
    connect(fetch, &QPushButton::clicked, this, &MainWindow::checkForUpdates);
    auto* importButton = new QPushButton(tr("Import an archive…"));
    connect(importButton, &QPushButton::clicked, this, &MainWindow::openArchive);
    offerLayout->addStretch();
    offerLayout->addWidget(offerText);
    offerLayout->addWidget(fetch, 0, Qt::AlignCenter);
    offerLayout->addWidget(importButton, 0, Qt::AlignCenter);
    offerLayout->addStretch();
    mTreeOrOffer->setObjectName(QStringLiteral("treeOrOffer"));
    mTreeOrOffer->addWidget(mTree);
    mTreeOrOffer->addWidget(offer);

    auto* left = new QWidget;
    auto* leftLayout = new QVBoxLayout(left);
    leftLayout->addWidget(filterLine);
    leftLayout->addWidget(mSearch);
    leftLayout->addWidget(mTreeOrOffer, 1);

    auto* panes = new QSplitter(Qt::Horizontal);
    panes->addWidget(left);
    panes->addWidget(mDetails);
    panes->setStretchFactor(0, 3);
    panes->setStretchFactor(1, 2);
    panes->setChildrenCollapsible(false);
    auto* main = new QSplitter(Qt::Vertical);
    main->setObjectName(QStringLiteral("libMainSplitter")); // where the progress panel docks
    main->addWidget(panes);
    main->setChildrenCollapsible(false);
    setCentralWidget(main);

    mSummary->setObjectName(QStringLiteral("summary"));
    mSummary->setTextFormat(Qt::PlainText);
    mSummary->setWordWrap(true);
    mSummary->setContentsMargins(kSummaryMargin, 0, kSummaryMargin, 0);
    mSpeed->setObjectName(QStringLiteral("speed"));
    mCancel->setObjectName(QStringLiteral("cancelButton"));
    mCancel->setText(tr("Cancel"));
    mCancel->hide();
    connect(mCancel, &QToolButton::clicked, mUpdates, &UpdateController::cancel);
    auto* log = new QToolButton;
    log->setObjectName(QStringLiteral("showLog"));
    log->setText(tr("Log"));
    connect(log, &QToolButton::clicked, this, &MainWindow::showLog);
    statusBar()->addWidget(mSummary, 1);
    statusBar()->addPermanentWidget(mSpeed);
    statusBar()->addPermanentWidget(mUpdate);
    statusBar()->addPermanentWidget(mCancel);
    statusBar()->addPermanentWidget(log);
}

void MainWindow::buildMenus()
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

    QMenu* library = menuBar()->addMenu(tr("&Library"));
    mUpdateAction = library->addAction(tr("Check for &updates"), this, &MainWindow::checkForUpdates,
                                       QKeySequence(Qt::CTRL + Qt::Key_U));
    mUpdateAction->setObjectName(QStringLiteral("checkForUpdates"));
    mUpdate->setDefaultAction(mUpdateAction);
    mCancelAction = library->addAction(tr("&Cancel the update"), mUpdates, &UpdateController::cancel,
                                       QKeySequence(Qt::CTRL + Qt::Key_Period));
    mCancelAction->setObjectName(QStringLiteral("cancelUpdate"));
    mCancelAction->setEnabled(false);
    library->addAction(tr("Refresh &manufacturers…"), this, &MainWindow::refreshManufacturers)
        ->setObjectName(QStringLiteral("refreshManufacturers"));
    library->addSeparator();
    library->addAction(tr("&Search"), mSearch, &SearchPane::focusField, QKeySequence::Find);
    library->addAction(tr("Edit &filters…"), this, &MainWindow::editFilters)
        ->setObjectName(QStringLiteral("editFilters"));
    library->addAction(tr("Show the &log"), this, &MainWindow::showLog, QKeySequence(Qt::CTRL + Qt::Key_L))
        ->setObjectName(QStringLiteral("showLog"));
}

void MainWindow::connectTree()
{
    connect(mModel, &LibraryModel::dropped, this, &MainWindow::itemsDropped);
    connect(mTree, &QTreeView::collapsed, mModel, &LibraryModel::retry);
    connect(mTree->selectionModel(), &QItemSelectionModel::currentChanged, this, &MainWindow::chooseCurrent);
    connect(mSearch, &SearchPane::activeChanged, this,
            [this](bool isActive) { mTreeOrOffer->setVisible(!isActive); });
    connect(mSearch, &SearchPane::chosen, mDetails, &DetailsPane::showChosen);
    connect(mFilter, qOverload<int>(&QComboBox::activated), this, &MainWindow::chooseFilter);
}

void MainWindow::refreshTree()
{
    QModelIndexList empty;
    for (int row = 0; row < mModel->rowCount(); ++row)
        if (!mModel->hasChildren(mModel->index(row, 0)))
            empty << mModel->index(row, 0);
    mModel->refresh();
    mTreeOrOffer->setCurrentIndex(mModel->catalogCount() == 0 ? kOfferPage : kTreePage);
    applyFilter();
    for (const QModelIndex& category : empty) // what the user closed stays closed
        mTree->expand(category);
}

void MainWindow::fillFilters()
{
    const LibraryFilterManager& manager = LibraryFilterManager::getLibraryFilterManager();
    mFilter->clear();
    for (const std::string& name : manager.getFilterStrings())
        mFilter->addItem(QString::fromStdString(name));
    int current = 0;
    for (std::size_t i = 0; i < manager.getLibraryFilters().size() && current == 0; ++i)
        if (manager.hasActiveFilter() &&
            manager.getLibraryFilters()[i].getFilterId() == manager.getCurrentFilterId())
            current = static_cast<int>(i) + 1;
    mFilter->setCurrentIndex(current);
}

void MainWindow::chooseFilter(int index)
{
    LibraryFilterManager& manager = LibraryFilterManager::getLibraryFilterManager();
    const auto& filters = manager.getLibraryFilters();
    const auto position = static_cast<std::size_t>(index) - 1; // the first entry is "no filter"
    manager.setCurrentFilterId(index > 0 && position < filters.size() ? filters[position].getFilterId() : -1);
    manager.saveFilters();
    applyFilter();
}

void MainWindow::applyFilter()
{
    const LibraryFilterManager& manager = LibraryFilterManager::getLibraryFilterManager();
    std::vector<SearchPane::Source> sources;
    mModel->forEachCatalog([&](const QModelIndex& category, Library::TreeData& catalog) {
        bool isShown = !manager.hasActiveFilter();
        if (!isShown) {
            try {
                isShown = manager.isFilteredDatabase(CatalogDatabase(catalog.getDatabasePath()).id());
            } catch (const std::exception&) {
                isShown = false; // what cannot be read is in no filter
            }
        }
        mTree->setRowHidden(catalog.row(), category, !isShown);
        if (isShown)
            sources.push_back({positionOf(category), catalog.getDatabasePath()});
    });
    mSearch->setSources(std::move(sources));
}

void MainWindow::chooseCurrent()
{
    const auto* item = dynamic_cast<const Library::TreeItemData*>(mModel->node(mTree->currentIndex()));
    if (!item)
        return;
    Library::Chooser::get()->setData(*item);
    mDetails->showChosen();
}

void MainWindow::checkForUpdates()
{
    if (mUpdates->isRunning())
        return;
    if (service().serviceUrl.isEmpty())
        editPreferences();
    const BrowserSettings asked = service();
    if (asked.serviceUrl.isEmpty())
        return;
    showRunning(true);
    mSummary->clear(); // the panel speaks now
    mUpdates->start(asked.serviceUrl, asked.product, asked.productVersion);
}

void MainWindow::showRunning(bool isRunning)
{
    mUpdateAction->setEnabled(!isRunning);
    mCancelAction->setEnabled(isRunning);
    mUpdate->setVisible(!isRunning);
    mCancel->setVisible(isRunning);
    mSpeed->clear();
}

void MainWindow::updateEnded(const QString& summary, bool hasProblems)
{
    showRunning(false);
    mSummary->setText(hasProblems ? summary + QLatin1Char(' ') + tr("The log has the details.") : summary);
    refreshTree();
}

void MainWindow::catalogReplaced(const fileString& database)
{
    mPlace->remember(database);
    mModel->reload(database);
    applyFilter();
    mTreeOrOffer->setCurrentIndex(kTreePage);
}

void MainWindow::itemsDropped(const fileString& database, const QString& problem)
{
    catalogReplaced(database);
    const QString name = QString::fromStdString(database.stem().toNativeString());
    mSummary->setText(problem.isEmpty() ? tr("Copied to %1.").arg(name)
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
        mSummary->setText(preview.summary());
        mDetails->showChosen();
    }
}

void MainWindow::editFilters()
{
    std::vector<FilterEditor::Database> databases;
    mModel->forEachCatalog([&](const QModelIndex&, Library::TreeData& catalog) {
        try {
            databases.push_back({CatalogDatabase(catalog.getDatabasePath()).id(), catalog.getItemName()});
        } catch (const std::exception&) {
            // what cannot be read has no id to filter by
        }
    });
    FilterEditor editor(databases, this);
    if (editor.exec() == QDialog::Accepted) {
        fillFilters();
        applyFilter();
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
