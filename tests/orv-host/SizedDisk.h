#pragma once

#include <cstdint>
#include <string>

namespace test {

/// Makes the system report this size and this free space for every disk until the destructor.
class SizedDisk
{
public:
    SizedDisk(std::uint64_t capacity, std::uint64_t available);
    ~SizedDisk();
    SizedDisk(const SizedDisk&) = delete;
    SizedDisk& operator=(const SizedDisk&) = delete;

    /// The path that the system was last asked about.
    static std::string asked();
};

} // namespace test
