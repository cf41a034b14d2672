#pragma once

#include <cstddef>
#include <map>
#include <string>

#include "tests/allocation-sweeps/AllocationPlan.h"
#include "tests/support/ScopedHost.h"

namespace test {

/// Every name below the host's root with its content. Names of folders end with "/" and have no content.
using FileTree = std::map<std::string, std::string>;

/// One operation whose allocations fail one after the other. After each failure every file must be old or
/// new, no other files may exist, and repeating the operation must give the same result as without a failure.
class AllocationScenario
{
public:
    explicit AllocationScenario(ScopedHost& host) : mHost(host) {}
    virtual ~AllocationScenario() = default;

    /// Writes the old state into the empty folders of the host.
    virtual void prepare() {}
    /// Restores the files that the operation consumes, before it is repeated.
    virtual void putBack() {}
    /// Runs the operation. Only allocations under `CountedAllocations` fail.
    virtual void act() = 0;
    /// Whether the contract of the operation allows it to throw after a failure.
    virtual bool mayThrow() const { return false; }
    /// Whether this file may be missing or have other content after a failure.
    virtual bool isExcepted(const std::string&) const { return false; }
    /// Whether content that is missing from this file after a failure may stay missing.
    virtual bool mayStayOut(const std::string&) const { return false; }
    /// Whether the operation starts threads.
    virtual bool hasHelpers() const { return false; }

    /// Makes some or all of the allocations fail, also those on the threads that the operation starts.
    void sweep();

protected:
    ScopedHost& host() { return mHost; }

private:
    FileTree tree() const;
    void reset();
    void run();
    /// Runs the operation without a failure.
    /// @return the number of allocations on threads of this kind
    std::size_t count(CountedThread thread);
    /// Runs the operation with this failure and checks the result.
    /// @return whether the failure happened
    bool fail(std::size_t number, CountedThread thread);
    void sweepCaller(std::size_t count);
    void sweepHelpers();
    void expectSound(const FileTree& now) const;
    void expectRecovered();

    ScopedHost& mHost;
    FileTree mOld;
    FileTree mNew;
    FileTree mNewTwice; ///< after two operations without failures
};

} // namespace test
