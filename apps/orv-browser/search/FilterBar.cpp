#include "apps/orv-browser/search/FilterBar.h"

#include <stdexcept>

#include <QComboBox>
#include <QHBoxLayout>
#include <QMessageBox>
#include <QToolButton>

#include "OrvHost/records/FilterChange.h"
#include "OrvLibrary/LibraryFilterManager.h"

namespace {

QVariant idData(long id)
{
    return QVariant::fromValue(static_cast<qlonglong>(id));
}

} // namespace

FilterBar::FilterBar(QWidget* parent) : QWidget(parent), mChoice(new QComboBox)
{
    mChoice->setObjectName(QStringLiteral("filterChoice"));
    mChoice->setAccessibleName(tr("Filter"));
    auto* edit = new QToolButton;
    edit->setObjectName(QStringLiteral("editFilters"));
    edit->setText(tr("Edit…"));
    edit->setAccessibleName(tr("Edit the filters"));
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    mChoice->setSizeAdjustPolicy(QComboBox::AdjustToContents);
    layout->addWidget(mChoice, 1);
    layout->addWidget(edit);
    connect(mChoice, qOverload<int>(&QComboBox::activated), this, &FilterBar::choose);
    connect(edit, &QToolButton::clicked, this, &FilterBar::editAsked);
}

void FilterBar::fill()
{
    const LibraryFilterManager& manager = LibraryFilterManager::getLibraryFilterManager();
    const std::vector<std::string> names = manager.getFilterStrings(); // "no filter", then the filters
    const bool isFiltering = OrvHost::FilterChange::isFiltering(manager);
    mChoice->clear();
    mChoice->addItem(QString::fromStdString(names.front()), idData(OrvHost::FilterChange::kNoFilter));
    for (const LibraryFilter& filter : manager.getLibraryFilters())
        mChoice->addItem(QString::fromStdString(filter.getFilterName()), idData(filter.getFilterId()));
    mChoice->setCurrentIndex(isFiltering ? mChoice->findData(idData(manager.getCurrentFilterId())) : 0);
}

void FilterBar::chooseNone()
{
    if (OrvHost::FilterChange::isFiltering(LibraryFilterManager::getLibraryFilterManager()))
        use(OrvHost::FilterChange::kNoFilter);
}

void FilterBar::choose(int index)
{
    use(static_cast<long>(mChoice->itemData(index).toLongLong()));
    Q_EMIT chosen();
}

/// Another program may have removed the filter meanwhile, and a folder that cannot be written keeps no
/// choice.
void FilterBar::use(long id)
{
    QString problem;
    try {
        OrvHost::FilterChange change;
        change.use(id);
        change.save();
    } catch (const std::runtime_error& error) {
        problem = QString::fromUtf8(error.what());
    }
    fill();
    if (!problem.isEmpty())
        QMessageBox::warning(this, tr("Filter"),
                             tr("The choice of the filter was not saved: %1").arg(problem));
}
