#pragma once

#include <set>
#include <string>

#include "OrvLibrary/LibraryCatalogUpdater.h"

namespace test {

/// What a host constructs an updater with.
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

/// Runs the updater on a thread of its own, by value, with the event loop on the calling thread. Returns when
/// the run has ended and everything that it posted was delivered.
void runUpdate(LibraryCatalogUpdate::LibraryCatalogUpdater updater);
void runUpdate(QObject& host, const UpdateArguments& arguments);

} // namespace test
