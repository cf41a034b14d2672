#pragma once

#include <set>
#include <string>

#include "OrvLibrary/LibraryCatalogUpdater.h"

namespace test {

/// The arguments of the updater's constructor.
struct UpdateArguments
{
    std::set<fileString> core;
    std::set<fileString> bonus;
    std::set<fileString> manufacturer;
    std::string product = "Orv";
    std::string version = "7";
    std::string redirect = "http://service.test/redirect";
    bool coreOnly = false;
};

LibraryCatalogUpdate::LibraryCatalogUpdater makeUpdater(QObject& host, const UpdateArguments& arguments);

/// Runs the updater on its own thread while the calling thread runs an event loop. Returns after the run has
/// ended and everything that it posted has been delivered.
void runUpdate(LibraryCatalogUpdate::LibraryCatalogUpdater updater);
void runUpdate(QObject& host, const UpdateArguments& arguments);

} // namespace test
