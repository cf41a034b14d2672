#pragma once

#include <cstdint>
#include <string>
#include <vector>

/// The content of a sample catalog.
struct SampleCatalogPlan
{
    std::string id;   ///< the library database id
    std::string name; ///< name for the user, UTF-8
    std::vector<std::string> folders;
    int itemsPerFolder = 0;
    int geometryBytes = 0; ///< bytes of geometry of each item
    int manufacturer = 0;  ///< maker of all items; 0 for different makers, or none
    std::uint32_t seed = 0;
};

/// Writes a catalog database. The same plan always gives the same bytes.
/// @param path the file, which is replaced in one step
/// @throws std::runtime_error with the path and the reason
void writeSampleCatalog(const std::string& path, const SampleCatalogPlan& plan);
