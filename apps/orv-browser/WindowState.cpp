#include "apps/orv-browser/WindowState.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include "OrvHost/TextFile.h"

namespace {

constexpr int kMostOpen = 500; // open places that are stored

const char* const kKinds[] = {"everything", "category", "catalog", "folder", "favourites", "recent", "news"};
const char* const kOrders[] = {"name", "catalog", "style", "manufacturer"};

fileString fileIn(const fileString& root)
{
    return root / fileString("browser-state.json");
}

template <std::size_t Count>
int positionOf(const char* const (&names)[Count], const QString& name)
{
    for (std::size_t i = 0; i < Count; ++i)
        if (name == QLatin1String(names[i]))
            return static_cast<int>(i);
    return 0;
}

QString textOf(const fileString& path)
{
    return QFile::decodeName(path.toNativeString().c_str());
}

fileString pathOf(const QJsonValue& value)
{
    return fileString(QFile::encodeName(value.toString()).toStdString());
}

QJsonObject written(const Place& place)
{
    return {{"kind", kKinds[static_cast<int>(place.kind)]},
            {"category", place.category},
            {"catalog", textOf(place.database)},
            {"folder", static_cast<double>(place.folder)}};
}

Place readPlace(const QJsonObject& object)
{
    Place place;
    place.kind = static_cast<Place::Kind>(positionOf(kKinds, object["kind"].toString()));
    place.category = qBound(-1, object["category"].toInt(-1), 3);
    place.database = pathOf(object["catalog"]);
    place.folder = static_cast<long long>(object["folder"].toDouble(-1));
    return place;
}

} // namespace

WindowState WindowState::load(const fileString& root)
{
    WindowState state;
    QFile file(textOf(fileIn(root)));
    if (!file.open(QIODevice::ReadOnly))
        return state;
    const QJsonObject document = QJsonDocument::fromJson(file.readAll()).object();
    const QJsonArray geometry = document["geometry"].toArray();
    if (geometry.size() == 4)
        state.geometry = {geometry[0].toInt(), geometry[1].toInt(), geometry[2].toInt(), geometry[3].toInt()};
    state.isMaximized = document["maximized"].toBool();
    for (const auto& width : document["panes"].toArray())
        state.panes << width.toInt();
    if (state.panes.size() != 3)
        state.panes.clear();
    state.side = document["pictureSize"].toInt(state.side);
    state.isGrid = document["view"].toString() != QLatin1String("list");
    state.order = static_cast<ItemQuery::Order>(positionOf(kOrders, document["order"].toString()));
    state.isDescending = document["descending"].toBool();
    state.place = readPlace(document["place"].toObject());
    for (const auto& place : document["open"].toArray())
        state.open.push_back(readPlace(place.toObject()));
    const QJsonObject selected = document["selected"].toObject();
    state.selectedDatabase = pathOf(selected["catalog"]);
    state.selectedItem = static_cast<long long>(selected["item"].toDouble(-1));
    return state;
}

void WindowState::save(const fileString& root) const
{
    QJsonArray widths;
    for (const int width : panes)
        widths.append(width);
    QJsonArray places;
    for (const Place& openPlace : open)
        if (places.size() < kMostOpen)
            places.append(written(openPlace));
    const QJsonObject document{
        {"geometry", QJsonArray{geometry.x(), geometry.y(), geometry.width(), geometry.height()}},
        {"maximized", isMaximized},
        {"panes", widths},
        {"pictureSize", side},
        {"view", isGrid ? "grid" : "list"},
        {"order", kOrders[static_cast<int>(order)]},
        {"descending", isDescending},
        {"place", written(place)},
        {"open", places},
        {"selected",
         QJsonObject{{"catalog", textOf(selectedDatabase)}, {"item", static_cast<double>(selectedItem)}}},
    };
    try {
        OrvHost::TextFile::write(fileIn(root), QJsonDocument(document).toJson().toStdString());
    } catch (const std::exception&) {
        return; // the window is closing, so nobody could see a message
    }
}
