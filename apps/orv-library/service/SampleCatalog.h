#pragma once

#include <cstdint>
#include <string>
#include <vector>

/// What a sample catalog is made of.
struct SampleCatalogPlan
{
    std::string id;   ///< the library database id
    std::string name; ///< what the user reads, UTF-8
    std::vector<std::string> folders;
    int itemsPerFolder = 0;
    int geometryBytes = 0; ///< bytes of geometry of each item
    int manufacturer = 0;  ///< id of the maker of all items; 0 for a mix, with none among them
    std::uint32_t seed = 0;
};

/// Writes a catalog database. The same plan gives the same bytes.
/// @param path a file that is replaced in one step
/// @throws std::runtime_error with the path and the reason
void writeSampleCatalog(const std::string& path, const SampleCatalogPlan& plan);
