// Adds a manufacturer record, saves the table, and reads a contact that refers to the shared default text.
#include <iostream>

#include <QCoreApplication>

#include "OrvLibrary/Manufacturer/ManufacturerManager.h"
#include "OrvLibrary/host/TimeUtils.h"

int main(int argc, char** argv)
{
    QCoreApplication qt(argc, argv);
    ManufacturerManager* manager = ManufacturerManager::getManufacturerManager();

    std::map<long, Manufacturer> records;
    records.emplace(7, Manufacturer("Northern Windows", "https://windows.example", "default", "",
                                    "windows.png", "default", false, false, Library::getTimeNow()));
    manager->saveModifiedManufacturers(records, "Ask your dealer");

    const Manufacturer& record = manager->getManufacturer(7);
    std::cout << manager->getIdNameMap().at(7) << ", phone: " << record.getManufacturerPhoneNumber(true)
              << ", logo: " << record.getManufacturerFullLogoName() << std::endl;
    ManufacturerManager::cleanup();
}
