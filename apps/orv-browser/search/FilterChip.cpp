#include "apps/orv-browser/search/FilterChip.h"

#include <QMenu>

#include "OrvHost/records/FilterChange.h"
#include "OrvLibrary/LibraryFilterManager.h"
#include "apps/orv-browser/search/FacetChip.h"

using OrvHost::FilterChange;

FilterChip::FilterChip(QWidget* parent) : QToolButton(parent)
{
    setObjectName(QStringLiteral("filterChip"));
    setPopupMode(QToolButton::InstantPopup);
    setFocusPolicy(Qt::TabFocus);
    setMenu(new QMenu(this));
    connect(menu(), &QMenu::aboutToShow, this, &FilterChip::fillMenu);
    refresh();
}

void FilterChip::refresh()
{
    const LibraryFilterManager& manager = LibraryFilterManager::getLibraryFilterManager();
    const bool isFiltering = FilterChange::isFiltering(manager);
    const QString name = QString::fromStdString(isFiltering ? manager.getCurrentFilterString() : "");
    FacetChip::showOn(*this, tr("Filter"), name);
}

void FilterChip::addChoice(const QString& name, long id, bool isCurrent)
{
    QAction* action = menu()->addAction(FacetChip::escaped(name));
    action->setCheckable(true);
    action->setChecked(isCurrent);
    connect(action, &QAction::triggered, this, [this, id] { Q_EMIT useAsked(id); });
}

void FilterChip::fillMenu()
{
    const LibraryFilterManager& manager = LibraryFilterManager::getLibraryFilterManager();
    const std::vector<std::string> names = manager.getFilterStrings(); // "no filter", then the filters
    const bool isFiltering = FilterChange::isFiltering(manager);
    menu()->clear();
    addChoice(QString::fromStdString(names.front()), FilterChange::kNoFilter, !isFiltering);
    for (const LibraryFilter& filter : manager.getLibraryFilters())
        addChoice(QString::fromStdString(filter.getFilterName()), filter.getFilterId(),
                  isFiltering && filter.getFilterId() == manager.getCurrentFilterId());
    menu()->addSeparator();
    QAction* save = menu()->addAction(tr("Save as filter…"));
    save->setObjectName(QStringLiteral("saveAsFilter"));
    save->setEnabled(mIsSavable);
    connect(save, &QAction::triggered, this, &FilterChip::saveAsked);
    QAction* edit = menu()->addAction(tr("Edit the filters…"));
    edit->setObjectName(QStringLiteral("editTheFilters"));
    connect(edit, &QAction::triggered, this, &FilterChip::editAsked);
}
