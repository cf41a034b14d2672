#pragma once

#include <cstddef>

namespace test {

/// The threads that a plan counts, each for itself.
enum class CountedThread
{
    Caller, ///< the one that `CountedAllocations` was made on
    Helper  ///< those that it started meanwhile, all together
};

/// Counts what the threads' code allocates with `operator new` while it lives, and lets one allocation fail
/// with `std::bad_alloc`. The start of a thread, which needs memory too, counts as one, and fails as the
/// system lets it fail. One at a time for the whole process: it may be made on one thread and the counting be
/// switched on on another.
class AllocationPlan
{
public:
    enum class Whose
    {
        Ours,      ///< of this program's own code, made by itself or by the standard library for it
        Everybodys ///< also those of Qt and other libraries
    };

    /// @param failing the allocation that fails, counted from 1; 0 for none
    explicit AllocationPlan(std::size_t failing, Whose whose = Whose::Ours,
                            CountedThread thread = CountedThread::Caller);
    ~AllocationPlan();
    AllocationPlan(const AllocationPlan&) = delete;
    AllocationPlan& operator=(const AllocationPlan&) = delete;

    /// How many allocations were counted.
    std::size_t count(CountedThread thread = CountedThread::Caller) const;
    /// Whether the allocation was reached.
    bool hasFailed() const;
    /// Waits until every helper has ended.
    static void waitForHelpers();
};

/// Lets the allocations of the calling thread, and of those it starts, count from here to the end of the
/// block.
class CountedAllocations
{
public:
    CountedAllocations();
    ~CountedAllocations();
    CountedAllocations(const CountedAllocations&) = delete;
    CountedAllocations& operator=(const CountedAllocations&) = delete;
};

} // namespace test
