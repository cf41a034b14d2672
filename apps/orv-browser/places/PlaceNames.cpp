#include "apps/orv-browser/places/PlaceNames.h"

#include <algorithm>

#include <QCoreApplication>

namespace {

QString translated(const char* text)
{
    return QCoreApplication::translate("PlaceNames", text);
}

} // namespace

QString PlaceNames::category(int category)
{
    const char* names[] = {QT_TRANSLATE_NOOP("PlaceNames", "Core"), QT_TRANSLATE_NOOP("PlaceNames", "Bonus"),
                           QT_TRANSLATE_NOOP("PlaceNames", "Manufacturers"),
                           QT_TRANSLATE_NOOP("PlaceNames", "My libraries")};
    return category >= 0 && category < 4 ? translated(names[category]) : QString();
}

QString PlaceNames::name(const Place& place, const ItemIndex& index)
{
    switch (place.kind) {
    case Place::Kind::Everything:
        return translated(QT_TRANSLATE_NOOP("PlaceNames", "Everything"));
    case Place::Kind::Favourites:
        return translated(QT_TRANSLATE_NOOP("PlaceNames", "Favourites"));
    case Place::Kind::Recent:
        return translated(QT_TRANSLATE_NOOP("PlaceNames", "Recent"));
    case Place::Kind::News:
        return translated(QT_TRANSLATE_NOOP("PlaceNames", "What's new"));
    case Place::Kind::Category:
        return category(place.category);
    case Place::Kind::Catalog:
        return QString::fromStdString(place.database.stem().toNativeString());
    case Place::Kind::Folder:
        break;
    }
    const auto content = index.find(place.database);
    const int folder = content ? content->folderAt(place.folder) : -1;
    return folder < 0 ? QString()
                      : QString::fromStdString(content->folders()[static_cast<std::size_t>(folder)].name);
}

std::vector<Place> PlaceNames::way(const Place& place, const ItemIndex& index)
{
    std::vector<Place> way{place};
    if (place.kind == Place::Kind::Folder) {
        const auto content = index.find(place.database);
        int folder = content ? content->folderAt(place.folder) : -1;
        while (folder >= 0 && content->folders()[static_cast<std::size_t>(folder)].parent >= 0) {
            folder = content->folders()[static_cast<std::size_t>(folder)].parent;
            way.push_back({Place::Kind::Folder, place.category, place.database,
                           content->folders()[static_cast<std::size_t>(folder)].id});
        }
        way.push_back({Place::Kind::Catalog, place.category, place.database, -1});
    }
    if (place.isInCatalog())
        way.push_back({Place::Kind::Category, place.category, {}, -1});
    if (place.kind != Place::Kind::Everything)
        way.push_back({});
    std::reverse(way.begin(), way.end());
    return way;
}
