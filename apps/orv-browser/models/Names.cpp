#include "apps/orv-browser/models/Names.h"

#include <QCoreApplication>

#include "OrvLibrary/Manufacturer/ManufacturerManager.h"
#include "OrvLibrary/Utility/ObjectStyleManager.h"
#include "apps/orv-browser/models/TextFolding.h"

namespace {

constexpr std::int32_t kFirstStyle = 10000;
constexpr std::int32_t kLastStyle = 10014;

} // namespace

QString Names::style(std::int32_t number)
{
    if (number < 0)
        return {};
    return QString::fromStdString(ObjectStyleManager::getObjectStyleManager().getStyleName(number));
}

QString Names::maker(std::int32_t number)
{
    if (number < 0)
        return {};
    const ManufacturerManager* manager = ManufacturerManager::getManufacturerManager();
    if (!manager->manufacturerExists(number))
        return QCoreApplication::translate("Names", "Number %1, not in the records").arg(number);
    return QString::fromStdString(manager->getManufacturer(number).getManufacturerName());
}

std::map<std::int32_t, std::string> Names::foldedStyles()
{
    std::map<std::int32_t, std::string> names;
    for (std::int32_t number = kFirstStyle; number <= kLastStyle; ++number)
        names[number] = TextFolding::folded(style(number).toStdString());
    return names;
}

std::map<std::int32_t, std::string> Names::foldedMakers()
{
    std::map<std::int32_t, std::string> names;
    for (const auto& [id, name] : ManufacturerManager::getManufacturerManager()->getIdNameMap())
        if (id >= 0)
            names[static_cast<std::int32_t>(id)] = TextFolding::folded(name);
    return names;
}
