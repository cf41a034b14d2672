// Saves a named filter, selects it, and checks whether it contains a database.
#include <iostream>

#include <QCoreApplication>

#include "OrvLibrary/LibraryFilterManager.h"
#include "OrvLibrary/host/FileUtils.h"
#include "OrvLibrary/host/PathUtils.h"

int main(int argc, char** argv)
{
    QCoreApplication qt(argc, argv);
    FileUtils::createDirectoriesWithPerm(PathUtils::getObject().getCoreLibraryDatabasePath(), false);

    LibraryFilterManager& manager = LibraryFilterManager::getLibraryFilterManager();
    manager.setLibraryFilters({LibraryFilter("Kitchen", 0, {"cabinets-1", "fixtures-7"})});
    manager.setCurrentFilterId(0);
    manager.saveFilters();

    for (const std::string& label : manager.getFilterStrings())
        std::cout << label << "\n";
    std::cout << "In force: " << manager.getCurrentFilterString() << "; fixtures-7 is "
              << (manager.isFilteredDatabase("fixtures-7") ? "in it" : "not in it") << std::endl;
}
