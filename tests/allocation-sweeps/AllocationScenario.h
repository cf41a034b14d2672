#pragma once

#include <cstddef>
#include <map>
#include <string>

#include "tests/allocation-sweeps/AllocationPlan.h"
#include "tests/support/ScopedHost.h"

namespace test {

/// Every name below the host's root with its content; folders end with "/" and have none.
using FileTree = std::map<std::string, std::string>;

/// One operation whose allocations fail, one after the other. After each the files are old or new, nothing
/// else is there, and the operation done again ends as if nothing had happened.
class AllocationScenario
{
public:
    explicit AllocationScenario(ScopedHost& host) : mHost(host) {}
    virtual ~AllocationScenario() = default;

    /// Writes the old state into the host's folders, which are empty.
    virtual void prepare() {}
    /// Puts back what an operation takes away, before it is done again.
    virtual void putBack() {}
    /// The operation; what is to fail is done under `CountedAllocations`.
    virtual void act() = 0;
    /// Whether the operation may tell of the failure by an exception, as its contract says.
    virtual bool mayThrow() const { return false; }
    /// Whether the file may be missing, or hold neither its old nor its new content, after a failure.
    virtual bool isExcepted(const std::string&) const { return false; }
    /// Whether what a failure left out of the file stays out.
    virtual bool mayStayOut(const std::string&) const { return false; }
    /// Whether the operation starts threads of its own.
    virtual bool hasHelpers() const { return false; }

    /// Sweeps a cut of the allocations, or all, those of the threads that it starts too.
    void sweep();

protected:
    ScopedHost& host() { return mHost; }

private:
    FileTree tree() const;
    void reset();
    void run();
    /// One undisturbed operation.
    /// @return how many allocations those threads made
    std::size_t count(CountedThread thread);
    /// One operation with that failure, and what must hold then.
    /// @return whether it came to the failure
    bool fail(std::size_t number, CountedThread thread);
    void sweepCaller(std::size_t count);
    void sweepHelpers();
    void expectSound(const FileTree& now) const;
    void expectRecovered();

    ScopedHost& mHost;
    FileTree mOld;
    FileTree mNew;
    FileTree mNewTwice; ///< after two undisturbed operations
};

} // namespace test
