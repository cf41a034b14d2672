#include "apps/orv-browser/dialogs/FilterEditor.h"

#include <algorithm>
#include <set>
#include <stdexcept>

#include <QDialogButtonBox>
#include <QGridLayout>
#include <QLabel>
#include <QListWidget>
#include <QMessageBox>
#include <QPushButton>
#include <QSignalBlocker>

#include "OrvHost/records/FilterChange.h"
#include "OrvLibrary/LibraryFilterManager.h"
#include "apps/orv-browser/models/Reasons.h"

namespace {

/// Why filters cannot have these names, for people; empty when they can.
QString problemOfNames(const std::vector<LibraryFilter>& filters)
{
    std::set<std::string> names;
    for (const LibraryFilter& filter : filters) {
        const std::string& name = filter.getFilterName();
        if (name.empty())
            return FilterEditor::tr("Every filter needs a name.");
        if (!names.insert(name).second)
            return FilterEditor::tr("Two filters have the name “%1”. Give each a name of its own.")
                .arg(QString::fromStdString(name));
    }
    return {};
}

} // namespace

FilterEditor::FilterEditor(std::vector<Database> databases, QWidget* parent)
    : QDialog(parent),
      mDatabases(std::move(databases)),
      mFormer(LibraryFilterManager::getLibraryFilterManager().getLibraryFilters()),
      mFilters(mFormer),
      mNames(new QListWidget),
      mCatalogs(new QListWidget)
{
    setObjectName(QStringLiteral("filterEditor"));
    setWindowTitle(tr("Filters"));
    resize(520, 380);
    mNames->setObjectName(QStringLiteral("filterNames"));
    mNames->setAccessibleName(tr("Filters"));
    mCatalogs->setObjectName(QStringLiteral("filterCatalogs"));
    mCatalogs->setAccessibleName(tr("Catalogs in the filter"));
    auto* add = new QPushButton(tr("&New"));
    add->setObjectName(QStringLiteral("addFilter"));
    auto* remove = new QPushButton(tr("&Remove"));
    remove->setObjectName(QStringLiteral("removeFilter"));
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);

    auto* layout = new QGridLayout(this);
    layout->addWidget(new QLabel(tr("Filters:")), 0, 0, 1, 2);
    layout->addWidget(new QLabel(tr("Catalogs in the filter:")), 0, 2);
    layout->addWidget(mNames, 1, 0, 1, 2);
    layout->addWidget(mCatalogs, 1, 2, 2, 1);
    layout->addWidget(add, 2, 0);
    layout->addWidget(remove, 2, 1);
    layout->addWidget(buttons, 3, 0, 1, 3);
    layout->setColumnStretch(2, 1);

    for (const LibraryFilter& filter : mFilters) {
        auto* item = new QListWidgetItem(QString::fromStdString(filter.getFilterName()), mNames);
        item->setFlags(item->flags() | Qt::ItemIsEditable);
    }
    connect(add, &QPushButton::clicked, this, &FilterEditor::addFilter);
    connect(remove, &QPushButton::clicked, this, &FilterEditor::removeFilter);
    connect(mNames, &QListWidget::itemChanged, this, &FilterEditor::rename);
    connect(mNames, &QListWidget::currentRowChanged, this, &FilterEditor::showFilter);
    connect(buttons, &QDialogButtonBox::accepted, this, &FilterEditor::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    mNames->setCurrentRow(mFilters.empty() ? -1 : 0);
    mCatalogs->setEnabled(!mFilters.empty());
}

long FilterEditor::freeId() const
{
    long id = 0;
    while (LibraryFilterManager::getLibraryFilterFromId(id, mFilters).getFilterId() == id)
        ++id;
    return id;
}

QString FilterEditor::freeName() const
{
    const QString name = tr("New filter");
    QString free = name;
    for (int number = 2; !mNames->findItems(free, Qt::MatchExactly | Qt::MatchCaseSensitive).isEmpty();
         ++number)
        free = name + QLatin1Char(' ') + QString::number(number);
    return free;
}

void FilterEditor::addFilter()
{
    const QString name = freeName();
    mFilters.emplace_back(name.toStdString(), freeId(), std::vector<std::string>());
    auto* item = new QListWidgetItem(name, mNames);
    item->setFlags(item->flags() | Qt::ItemIsEditable);
    mNames->setCurrentItem(item);
    mNames->editItem(item);
}

void FilterEditor::removeFilter()
{
    const int row = mNames->currentRow();
    if (row < 0)
        return;
    mShown = -1;
    mFilters.erase(mFilters.begin() + row);
    {
        // The list chooses another row before it lets this one go, and would show a filter by its old place.
        const QSignalBlocker blocker(mNames);
        delete mNames->takeItem(row);
    }
    showFilter(mNames->currentRow());
}

void FilterEditor::rename(const QListWidgetItem* item)
{
    const int row = mNames->row(item);
    if (row >= 0 && static_cast<std::size_t>(row) < mFilters.size())
        mFilters[static_cast<std::size_t>(row)].setFilterName(item->text().trimmed().toStdString());
}

/// Databases that the filter names and that are not installed stay in it.
void FilterEditor::takeChecks()
{
    if (mShown < 0)
        return;
    LibraryFilter& filter = mFilters[static_cast<std::size_t>(mShown)];
    std::vector<std::string> ids = filter.getDatabaseIds();
    for (int row = 0; row < mCatalogs->count(); ++row) {
        const std::string& id = mDatabases[static_cast<std::size_t>(row)].id;
        const auto position = std::find(ids.begin(), ids.end(), id);
        const bool isChecked = mCatalogs->item(row)->checkState() == Qt::Checked;
        if (isChecked && position == ids.end())
            ids.push_back(id);
        else if (!isChecked && position != ids.end())
            ids.erase(std::remove(ids.begin(), ids.end(), id), ids.end());
    }
    filter.setDatabaseIds(ids);
}

void FilterEditor::showFilter(int row)
{
    takeChecks();
    mShown = row;
    mCatalogs->clear();
    mCatalogs->setEnabled(row >= 0);
    if (row < 0)
        return;
    const auto& ids = mFilters[static_cast<std::size_t>(row)].getDatabaseIds();
    for (const Database& database : mDatabases) {
        auto* item = new QListWidgetItem(QString::fromStdString(database.name), mCatalogs);
        item->setFlags(item->flags() | Qt::ItemIsUserCheckable);
        const bool isIn = std::find(ids.begin(), ids.end(), database.id) != ids.end();
        item->setCheckState(isIn ? Qt::Checked : Qt::Unchecked);
    }
}

void FilterEditor::accept()
{
    takeChecks();
    if (save())
        QDialog::accept();
}

/// Another program may have added a filter meanwhile, so the names are compared after the change.
bool FilterEditor::save()
{
    QString problem = problemOfNames(mFilters);
    try {
        if (problem.isEmpty()) {
            OrvHost::FilterChange change;
            change.apply(mFormer, mFilters);
            problem = problemOfNames(change.filters().getLibraryFilters());
            if (problem.isEmpty()) {
                change.save();
                return true;
            }
            change.filters().loadFilters(); // as if nothing had been changed
        }
    } catch (const std::runtime_error& error) {
        problem = tr("The filters could not be saved.") + "\n" + Reasons::text(error.what());
    }
    QMessageBox::warning(this, windowTitle(), problem);
    return false;
}
