#include "apps/orv-browser/gallery/SearchPane.h"

#include <algorithm>

#include <QComboBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QVBoxLayout>

#include "OrvLibrary/UI/TreeItemData.h"
#include "OrvLibrary/Utility/Chooser.h"
#include "apps/orv-browser/models/Background.h"
#include "apps/orv-browser/models/CatalogDatabase.h"

namespace {

constexpr int kDelayMilliseconds = 150;
constexpr int kMostResults = 500;

} // namespace

/// The found items, sorted, and what could not be searched.
struct SearchPane::Results
{
    std::vector<std::unique_ptr<Library::TreeItemData>> nodes;
    int unreadable = 0;
};

SearchPane::SearchPane(QWidget* parent)
    : QWidget(parent),
      mField(new QLineEdit),
      mCategory(new QComboBox),
      mList(new QListView),
      mSummary(new QLabel)
{
    mPool.setMaxThreadCount(1);
    mDelay.setSingleShot(true);
    mDelay.setInterval(kDelayMilliseconds);

    mField->setObjectName(QStringLiteral("searchField"));
    mField->setPlaceholderText(tr("Search the library"));
    mField->setAccessibleName(tr("Search the library"));
    mField->setClearButtonEnabled(true);
    mCategory->setObjectName(QStringLiteral("searchCategory"));
    mCategory->setAccessibleName(tr("Category to search in"));
    mCategory->addItems({tr("Everywhere"), tr("Core"), tr("Bonus"), tr("Manufacturers"), tr("My libraries")});
    mList->setObjectName(QStringLiteral("searchResults"));
    mList->setAccessibleName(tr("Found items"));
    mList->setModel(&mModel);
    mList->setUniformItemSizes(true);
    mList->setIconSize({24, 24});
    mList->setDragDropMode(QAbstractItemView::DragOnly);
    mSummary->setObjectName(QStringLiteral("searchSummary"));

    auto* line = new QHBoxLayout;
    line->addWidget(mField, 1);
    line->addWidget(mCategory);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addLayout(line);
    layout->addWidget(mSummary);
    layout->addWidget(mList, 1);
    mList->hide();
    mSummary->hide();

    connect(mField, &QLineEdit::textChanged, &mDelay, qOverload<>(&QTimer::start));
    connect(mField, &QLineEdit::returnPressed, this, &SearchPane::start);
    connect(mCategory, qOverload<int>(&QComboBox::currentIndexChanged), &mDelay, qOverload<>(&QTimer::start));
    connect(&mDelay, &QTimer::timeout, this, &SearchPane::start);
    connect(mList->selectionModel(), &QItemSelectionModel::currentChanged, this, &SearchPane::choose);
    connect(mList, &QListView::activated, this, &SearchPane::choose);
}

SearchPane::~SearchPane()
{
    if (mCancelled)
        *mCancelled = true;
    mPool.clear();
    mPool.waitForDone();
}

void SearchPane::focusField()
{
    mField->setFocus();
    mField->selectAll();
}

Library::Search::Info SearchPane::query() const
{
    const int category = mCategory->currentIndex() - 1; // 0 of the choice is everywhere
    Library::Search::Info info =
        category < 0 ? Library::Search::Info() : Library::Search::Info(1UL << category);
    info.text = mField->text().simplified().toStdString();
    for (const QString& term : mField->text().simplified().split(QLatin1Char(' '), Qt::SkipEmptyParts))
        info.terms.push_back(term.toStdString());
    return info;
}

void SearchPane::start()
{
    mDelay.stop();
    if (mCancelled)
        *mCancelled = true;
    const Library::Search::Info info = query();
    const bool isActive = !info.terms.empty();
    mList->setVisible(isActive);
    mSummary->setVisible(isActive);
    Q_EMIT activeChanged(isActive);
    if (!isActive) {
        mModel.clear();
        return;
    }
    mSummary->setText(tr("Searching…"));

    std::vector<fileString> databases;
    for (const Source& source : mSources)
        if (info.categories.empty() || info.categories.front() == source.category)
            databases.push_back(source.database);
    const auto cancelled = std::make_shared<std::atomic<bool>>(false);
    mCancelled = cancelled;
    Background::run(
        mPool, this,
        [databases, terms = info.terms, cancelled] {
            auto results = std::make_shared<Results>();
            for (const fileString& database : databases) {
                const int room = kMostResults - static_cast<int>(results->nodes.size());
                if (room <= 0 || *cancelled)
                    break;
                try {
                    const CatalogDatabase catalog(database);
                    for (const auto& item : catalog.search(terms, room, [&] { return cancelled->load(); })) {
                        auto node = std::make_unique<Library::TreeItemData>(item.id, database, item.name);
                        node->setSelectionPaneName(item.paneName);
                        results->nodes.push_back(std::move(node));
                    }
                } catch (const std::exception&) {
                    ++results->unreadable;
                }
            }
            std::sort(results->nodes.begin(), results->nodes.end(),
                      [](const auto& left, const auto& right) { return *left < *right; });
            return results;
        },
        [this, cancelled](const std::shared_ptr<Results>& results) { showResults(cancelled, *results); });
}

void SearchPane::showResults(const std::shared_ptr<std::atomic<bool>>& cancelled, Results& results)
{
    if (*cancelled)
        return;
    mModel.clear();
    QList<QStandardItem*> items;
    for (auto& node : results.nodes) {
        node->setToolTip(QString::fromStdString(node->getDatabasePath().stem().toNativeString()));
        items.append(node.release());
    }
    mModel.invisibleRootItem()->appendRows(items);
    QString summary = items.size() < kMostResults ? tr("%n item(s) found", nullptr, items.size())
                                                  : tr("The first %n item(s) found", nullptr, items.size());
    if (results.unreadable > 0)
        summary += QLatin1String("; ") + tr("%n catalog(s) cannot be read", nullptr, results.unreadable);
    mSummary->setText(summary);
}

void SearchPane::choose(const QModelIndex& index)
{
    const auto* node = dynamic_cast<const Library::TreeItemData*>(mModel.itemFromIndex(index));
    if (!node)
        return;
    Library::Chooser::get()->setData(*node);
    Q_EMIT chosen(node->getDatabasePath(), node->getId());
}
