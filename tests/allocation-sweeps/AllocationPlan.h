#pragma once

#include <cstddef>

namespace test {

/// Counts what the calling thread's code allocates with `operator new` while it lives, and lets one
/// allocation fail with `std::bad_alloc`. One at a time for the whole process: it may be made on one thread
/// and the counting be switched on on another.
class AllocationPlan
{
public:
    enum class Whose
    {
        Ours,      ///< of this program's own code, made by itself or by the standard library for it
        Everybodys ///< also those of Qt and other libraries
    };

    /// @param failing the allocation that fails, counted from 1; 0 for none
    explicit AllocationPlan(std::size_t failing, Whose whose = Whose::Ours);
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
