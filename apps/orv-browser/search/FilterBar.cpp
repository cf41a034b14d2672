#include "apps/orv-browser/search/FilterBar.h"

#include <QComboBox>
#include <QHBoxLayout>
#include <QToolButton>

#include "OrvLibrary/LibraryFilterManager.h"

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
    mChoice->clear();
    for (const std::string& name : manager.getFilterStrings())
        mChoice->addItem(QString::fromStdString(name));
    int current = 0;
    for (std::size_t i = 0; i < manager.getLibraryFilters().size() && current == 0; ++i)
        if (manager.hasActiveFilter() &&
            manager.getLibraryFilters()[i].getFilterId() == manager.getCurrentFilterId())
            current = static_cast<int>(i) + 1;
    mChoice->setCurrentIndex(current);
}

void FilterBar::chooseNone()
{
    LibraryFilterManager& manager = LibraryFilterManager::getLibraryFilterManager();
    if (!manager.hasActiveFilter())
        return;
    manager.setCurrentFilterId(-1);
    manager.saveFilters();
    mChoice->setCurrentIndex(0);
}

void FilterBar::choose(int index)
{
    LibraryFilterManager& manager = LibraryFilterManager::getLibraryFilterManager();
    const auto& filters = manager.getLibraryFilters();
    const auto position = static_cast<std::size_t>(index) - 1; // the first entry is "no filter"
    manager.setCurrentFilterId(index > 0 && position < filters.size() ? filters[position].getFilterId() : -1);
    manager.saveFilters();
    Q_EMIT chosen();
}
