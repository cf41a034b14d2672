#include "apps/orv-library/history/InstalledDocument.h"

#include "apps/orv-library/console/Console.h"

using OrvHost::InstalledCatalog;
using OrvHost::InstalledCatalogs::stateName;

namespace {

QString timeText(const QDateTime& time)
{
    return time.isValid() ? time.toUTC().toString(Qt::ISODate) : QString();
}

QJsonValue orNull(const QString& text)
{
    return text.isEmpty() ? QJsonValue() : QJsonValue(text);
}

std::string orDash(const std::string& text)
{
    return text.empty() ? "-" : text;
}

std::string itemsText(const InstalledCatalog& catalog)
{
    return catalog.items ? std::to_string(*catalog.items) : "-";
}

} // namespace

QJsonObject InstalledDocument::object(const InstalledCatalog& catalog)
{
    return {{"name", jsonText(catalog.place.name)},
            {"category", jsonText(catalog.place.categoryName())},
            {"version", orNull(jsonText(catalog.version))},
            {"bytes", static_cast<qint64>(catalog.bytes)},
            {"modified", orNull(timeText(catalog.modified))},
            {"items", catalog.items ? QJsonValue(static_cast<qint64>(*catalog.items)) : QJsonValue()},
            {"lastChecked", orNull(timeText(catalog.lastChecked))},
            {"state", stateName(catalog.state)},
            {"held", catalog.isHeld}};
}

QJsonObject InstalledDocument::unknown(const std::string& name)
{
    QJsonObject object{{"name", jsonText(name)}};
    for (const char* member :
         {"category", "version", "bytes", "modified", "items", "lastChecked", "state", "held"})
        object[member] = QJsonValue();
    return object;
}

std::string InstalledDocument::line(const InstalledCatalog& catalog)
{
    const std::string state = catalog.state == InstalledCatalog::State::Sound
                                  ? std::string()
                                  : std::string("  ") + stateName(catalog.state);
    const std::string items = catalog.items ? "  " + itemsText(catalog) + " items" : "";
    return catalog.place.key() + "  " + std::to_string(catalog.bytes) + " bytes" + items + "  " +
           timeText(catalog.modified).toStdString() + state + "\n";
}

std::string InstalledDocument::fields(const InstalledCatalog& catalog)
{
    return "Name: " + catalog.place.name + "\nCategory: " + catalog.place.categoryName() +
           "\nVersion: " + orDash(catalog.version) + "\nBytes: " + std::to_string(catalog.bytes) +
           "\nModified: " + timeText(catalog.modified).toStdString() + "\nItems: " + itemsText(catalog) +
           "\nLast checked: " + orDash(timeText(catalog.lastChecked).toStdString()) +
           "\nState: " + stateName(catalog.state) + "\nHeld: " + (catalog.isHeld ? "yes" : "no") + "\n";
}
