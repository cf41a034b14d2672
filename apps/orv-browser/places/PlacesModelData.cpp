// The data of each place in the tree: numbers, icons, states.
#include "OrvLibrary/UI/TreeData.h"
#include "apps/orv-browser/models/LibraryNews.h"
#include "apps/orv-browser/places/MakerLogos.h"
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
        return iconOf(place, content.get());
    case Qt::ToolTipRole:
        return problem.isEmpty() ? stateText(place) : tr("Cannot be read: %1").arg(problem);
    default: { // for screen readers
        const QString told = data(index, Qt::ToolTipRole).toString();
        const QString name = data(index, Qt::DisplayRole).toString();
        return told.isEmpty() ? name : tr("%1, %2").arg(name, told);
    }
    }
}

void PlacesModel::setListCounts(int favourites, int recent, int news)
{
    item(0)->setData(favourites, kCountRole);
    item(1)->setData(recent, kCountRole);
    item(2)->setData(news, kCountRole);
}

void PlacesModel::showLogos()
{
    forEachCatalog([this](const QModelIndex&, const Library::TreeData& catalog) {
        if (placeOf(catalog.index()).category == LibraryContent::kManufacturerCategory)
            Q_EMIT dataChanged(catalog.index(), catalog.index(), {Qt::DecorationRole});
    });
}

/// Until a maker's logo is there, and where there is none, its catalog looks as others do.
QIcon PlacesModel::iconOf(const Place& place, const CatalogContent* content) const
{
    if (content && !content->problem().isEmpty())
        return PlaceIcons::damaged();
    const bool isMakers = content && place.kind == Place::Kind::Catalog &&
                          place.category == LibraryContent::kManufacturerCategory;
    const QIcon logo =
        isMakers && content->maker() != CatalogContent::kNone ? mLogos->icon(content->maker()) : QIcon();
    return logo.isNull() ? PlaceIcons::of(place) : logo;
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
