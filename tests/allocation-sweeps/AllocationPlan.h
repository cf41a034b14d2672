#pragma once

#include <cstddef>

namespace test {

/// Counts what the calling thread's code allocates with `operator new` while it lives, and lets one
/// allocation fail with `std::bad_alloc`. Only allocations of this program's own code count, whether made by
/// itself or by the standard library for it; not those of Qt and other libraries. One at a time for the whole
/// process: it may be made on one thread and the counting be switched on on another.
class AllocationPlan
{
public:
    /// @param failing the allocation that fails, counted from 1; 0 for none
    explicit AllocationPlan(std::size_t failing);
    ~AllocationPlan();
    AllocationPlan(const AllocationPlan&) = delete;
    AllocationPlan& operator=(const AllocationPlan&) = delete;

    /// How many allocations were counted.
    std::size_t count() const;
    /// Whether the allocation was reached.
    bool hasFailed() const;
};

/// Lets the allocations of the calling thread count from here to the end of the block.
class CountedAllocations
{
public:
    CountedAllocations();
    ~CountedAllocations();
    CountedAllocations(const CountedAllocations&) = delete;
    CountedAllocations& operator=(const CountedAllocations&) = delete;
};

} // namespace test
