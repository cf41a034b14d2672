#pragma once

#include <cstddef>

namespace test {

/// The kinds of threads that a plan counts separately.
enum class CountedThread
{
    Caller, ///< the thread on which `CountedAllocations` was made
    Helper  ///< all threads started by the caller
};

/// Counts the allocations with `operator new` until the destructor and makes one of them fail with
/// `std::bad_alloc`. Starting a thread counts as an allocation too and fails as in the system. Only one plan
/// may exist per process. It may be made on another thread than the one whose allocations count.
class AllocationPlan
{
public:
    enum class Whose
    {
        Ours,      ///< allocations by this program's code, directly or through the standard library
        Everybodys ///< also allocations by Qt and other libraries
    };

    /// @param failing the number of the allocation that fails, from 1; 0 for none
    explicit AllocationPlan(std::size_t failing, Whose whose = Whose::Ours,
                            CountedThread thread = CountedThread::Caller);
    ~AllocationPlan();
    AllocationPlan(const AllocationPlan&) = delete;
    AllocationPlan& operator=(const AllocationPlan&) = delete;

    /// How many allocations were counted.
    std::size_t count(CountedThread thread = CountedThread::Caller) const;
    /// Whether the failing allocation has happened.
    bool hasFailed() const;
    /// Waits until all helper threads have ended.
    static void waitForHelpers();
};

/// Counts the allocations of the calling thread and of the threads that it starts, until the destructor.
class CountedAllocations
{
public:
    CountedAllocations();
    ~CountedAllocations();
    CountedAllocations(const CountedAllocations&) = delete;
    CountedAllocations& operator=(const CountedAllocations&) = delete;
};

} // namespace test
