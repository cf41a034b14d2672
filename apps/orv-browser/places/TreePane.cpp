#include "apps/orv-browser/places/TreePane.h"

#include <QEventLoop>
#include <QLabel>
#include <QPushButton>
#include <QTreeView>
#include <QVBoxLayout>

#include "OrvLibrary/LibraryFilterManager.h"
#include "OrvLibrary/UI/TreeItemData.h"
#include "OrvLibrary/Utility/Chooser.h"
#include "apps/orv-browser/models/CatalogIds.h"
#include "apps/orv-browser/models/LibraryModel.h"
#include "apps/orv-browser/places/TreePlace.h"

namespace {

constexpr int kOfferGap = 8; // pixels

} // namespace

TreePane::TreePane(QWidget* parent)
    : QStackedWidget(parent),
      mModel(new LibraryModel(this)),
      mIds(new CatalogIds(this)),
      mTree(new QTreeView),
      mPlace(new TreePlace(*mTree, *mModel))
{
    setObjectName(QStringLiteral("treeOrOffer"));
    buildTree();
    addWidget(mTree);
    addWidget(makeOffer());
    connect(mIds, &CatalogIds::ready, this, &TreePane::applyFilter);
    connect(mModel, &LibraryModel::dropped, this, &TreePane::dropped);
    connect(mTree, &QTreeView::collapsed, mModel, &LibraryModel::retry);
    connect(mTree->selectionModel(), &QItemSelectionModel::currentChanged, this, &TreePane::chooseCurrent);
}

/// The view goes first: the model's rows leave one by one, and each would choose another item in a pane that
/// is half gone.
TreePane::~TreePane()
{
    delete mTree;
}

void TreePane::buildTree()
{
    mTree->setObjectName(QStringLiteral("libraryTree"));
    mTree->setAccessibleName(tr("Library content"));
    mTree->setModel(mModel);
    mTree->setHeaderHidden(true);
    mTree->setUniformRowHeights(true);
    mTree->setIconSize({24, 24});
    mTree->setDragDropMode(QAbstractItemView::DragDrop);
    mTree->setDefaultDropAction(Qt::CopyAction);
    mTree->setEditTriggers(QAbstractItemView::NoEditTriggers);
}

QWidget* TreePane::makeOffer()
{
    auto* title = new QLabel(tr("The library is empty."));
    QFont font = title->font();
    font.setBold(true);
    title->setFont(font);
    title->setAlignment(Qt::AlignCenter);
    auto* text = new QLabel(tr("Fetch the catalogs from the service, or import an archive that you have."));
    text->setWordWrap(true);
    text->setAlignment(Qt::AlignCenter);
    auto* fetch = new QPushButton(tr("Fetch the content"));
    fetch->setObjectName(QStringLiteral("fetchContent"));
    connect(fetch, &QPushButton::clicked, this, &TreePane::fetchAsked);
    auto* import = new QPushButton(tr("Import an archive…"));
    connect(import, &QPushButton::clicked, this, &TreePane::importAsked);
    auto* offer = new QWidget;
    auto* layout = new QVBoxLayout(offer);
    layout->addStretch();
    layout->addWidget(title);
    layout->addWidget(text);
    layout->addSpacing(kOfferGap);
    layout->addWidget(fetch, 0, Qt::AlignCenter);
    layout->addWidget(import, 0, Qt::AlignCenter);
    layout->addStretch();
    return offer;
}

void TreePane::showTreeOrOffer()
{
    setCurrentIndex(mModel->catalogCount() == 0 ? 1 : 0);
}

void TreePane::refresh()
{
    QModelIndexList empty;
    for (int row = 0; row < mModel->rowCount(); ++row)
        if (!mModel->hasChildren(mModel->index(row, 0)))
            empty << mModel->index(row, 0);
    mModel->refresh();
    showTreeOrOffer();
    readIds();
    applyFilter();
    for (const QModelIndex& category : empty) // what the user closed stays closed
        mTree->expand(category);
}

void TreePane::reload(const fileString& database)
{
    mPlace->remember(database);
    mModel->reload(database);
    mIds->forget(database);
    readIds();
    applyFilter();
    showTreeOrOffer();
}

void TreePane::readIds()
{
    std::vector<fileString> catalogs;
    mModel->forEachCatalog([&](const QModelIndex&, const Library::TreeData& catalog) {
        catalogs.push_back(catalog.getDatabasePath());
    });
    mIds->read(catalogs);
}

void TreePane::applyFilter()
{
    const LibraryFilterManager& manager = LibraryFilterManager::getLibraryFilterManager();
    std::vector<SearchPane::Source> sources;
    mModel->forEachCatalog([&](const QModelIndex& category, Library::TreeData& catalog) {
        // What is not known yet, or cannot be read, is in no filter.
        const auto id = mIds->id(catalog.getDatabasePath());
        const bool isShown = !manager.hasActiveFilter() || (id && manager.isFilteredDatabase(*id));
        mTree->setRowHidden(catalog.row(), category, !isShown);
        if (isShown)
            sources.push_back({category.row(), catalog.getDatabasePath()});
    });
    Q_EMIT shownChanged(sources);
}

std::vector<FilterEditor::Database> TreePane::databases()
{
    QEventLoop loop;
    connect(mIds, &CatalogIds::ready, &loop, &QEventLoop::quit);
    if (mIds->isReading())
        loop.exec();
    std::vector<FilterEditor::Database> databases;
    mModel->forEachCatalog([&](const QModelIndex&, const Library::TreeData& catalog) {
        if (const auto id = mIds->id(catalog.getDatabasePath()))
            databases.push_back({*id, catalog.getItemName()});
    });
    return databases;
}

void TreePane::chooseCurrent()
{
    const auto* item = dynamic_cast<const Library::TreeItemData*>(mModel->node(mTree->currentIndex()));
    if (!item)
        return;
    Library::Chooser::get()->setData(*item);
    Q_EMIT itemChosen();
}
