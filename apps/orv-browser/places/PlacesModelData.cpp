// What the tree tells of each place: numbers, icons, states.
#include "OrvLibrary/UI/TreeData.h"
#include "apps/orv-browser/models/LibraryNews.h"
#include "apps/orv-browser/places/PlaceIcons.h"
#include "apps/orv-browser/places/PlacesModel.h"

QVariant PlacesModel::data(const QModelIndex& index, int role) const
{
    const bool isOurs = role == kCountRole || role == kProblemRole || role == kStateRole ||
                        role == Qt::DecorationRole || role == Qt::ToolTipRole ||
                        role == Qt::AccessibleTextRole;
    const Library::TreeData* shown = isOurs ? node(index) : nullptr;
    if (!shown)
        return QStandardItemModel::data(index, role);
    const Place place = placeOf(index);
    const auto content = place.isInCatalog() ? contentOf(*shown) : nullptr;
    const QString problem = content ? content->problem() : QString();
    switch (role) {
    case kCountRole:
        return countOf(place, content.get());
    case kProblemRole:
        return problem.isEmpty() ? QVariant() : problem;
    case kStateRole:
        return static_cast<int>(stateOf(place));
    case Qt::DecorationRole:
        return problem.isEmpty() ? PlaceIcons::of(place) : PlaceIcons::damaged();
    case Qt::ToolTipRole:
        return problem.isEmpty() ? stateText(place) : tr("Cannot be read: %1").arg(problem);
    default: { // for screen readers
        const QString told = data(index, Qt::ToolTipRole).toString();
        const QString name = data(index, Qt::DisplayRole).toString();
        return told.isEmpty() ? name : tr("%1, %2").arg(name, told);
    }
    }
}

QVariant PlacesModel::countOf(const Place& place, const CatalogContent* content) const
{
    if (content)
        return content->itemCount(content->folderAt(place.folder));
    if (place.isInCatalog())
        return {};
    int count = 0;
    for (const auto& catalog : mShown->catalogs())
        count += catalog->category() == place.category ? catalog->itemCount(-1) : 0;
    return count;
}

PlacesModel::State PlacesModel::stateOf(const Place& place) const
{
    if (place.kind != Place::Kind::Catalog)
        return State::None;
    if (mNews.isWaiting(place.database))
        return State::Waiting;
    return mNews.items()->count(place.database) > 0 ? State::New : State::None;
}

QString PlacesModel::stateText(const Place& place) const
{
    if (place.kind != Place::Kind::Catalog)
        return {};
    QStringList texts;
    if (mNews.isWaiting(place.database))
        texts << tr("an update is waiting");
    if (const int count = mNews.items()->count(place.database); count > 0)
        texts << tr("%Ln item(s) new or changed", nullptr, count);
    return texts.join(QStringLiteral(", "));
}
