#pragma once

#include <cstddef>
#include <cstdlib>
#include <string>
#include <vector>

namespace test {

/// Whether the sweeps run at full size, that is, whether the environment variable `ORV_SWEEP` is "full".
inline bool isFullSweep()
{
    const char* const size = std::getenv("ORV_SWEEP");
    return size && std::string(size) == "full";
}

/// The indexes of all cells in a full sweep, otherwise of about `cut` cells, spread evenly.
inline std::vector<std::size_t> sweepCells(std::size_t count, std::size_t cut)
{
    const std::size_t wanted = isFullSweep() || count < cut ? count : cut;
    std::vector<std::size_t> cells;
    for (std::size_t cell = 0; cell < wanted; ++cell)
        cells.push_back(cell * count / wanted);
    return cells;
}

} // namespace test
