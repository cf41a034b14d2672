#pragma once

#include <array>
#include <cstddef>
#include <functional>
#include <map>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "OrvLibrary/host/ThreadMutex.h"

namespace test {

/// The services that a host can install.
enum class Service
{
    Paths,
    Preferences,
    Strings,
    Messages,
    Application,
    FileSearch,
    Curl
};
constexpr std::size_t kServiceCount = 7;

const char* serviceName(Service service);

/// The effect of a planned fault.
enum class Fault
{
    Fail, ///< returns the operation's failure result without calling the wrapped service; an operation
          ///< without one forwards
    Throw ///< throws an `InjectedFault` before the call
};

/// The exception of `Fault::Throw`.
class InjectedFault : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

/// Counts the calls of all services together and of each service alone, and decides which of them fail. Calls
/// count from 1. Thread-safe.
class ServiceCalls
{
public:
    /// Whether the fault happens once or at every call from the planned one on.
    enum class Repeat
    {
        Once,
        ForEver
    };

    /// Plans a fault at a call, counted over all services.
    void planFault(std::size_t call, Fault fault, Repeat repeat = Repeat::Once);
    /// Plans a fault at a call, counted over this service only.
    void planFault(Service service, std::size_t call, Fault fault, Repeat repeat = Repeat::Once);
    /// Calls `hook` at the start of every call, before anything else happens, on the calling thread. The
    /// argument is the number of the call, counted over all services.
    void onCall(std::function<void(std::size_t)> hook);
    void reset();

    std::size_t total() const;
    std::size_t count(Service service) const;
    /// The operations in order, such as "Curl::download".
    std::vector<std::string> operations() const;
    /// How many of the planned faults happened.
    std::size_t faults() const;

    /// Counts a call. The forwarding services call this.
    /// @return whether the operation must return its failure result
    /// @throws InjectedFault if a `Throw` is planned for this call
    bool enter(Service service, const char* operation);

private:
    struct Plan
    {
        std::size_t call = 0; ///< 0: no fault is planned
        Fault fault = Fault::Fail;
        Repeat repeat = Repeat::Once;

        bool hits(std::size_t number) const;
    };

    mutable ThreadMutex mMutex;
    Plan mPlan;
    std::array<Plan, kServiceCount> mServicePlans;
    std::array<std::size_t, kServiceCount> mCounts{};
    std::vector<std::string> mOperations;
    std::size_t mFaults = 0;
    std::function<void(std::size_t)> mHook;
};

} // namespace test
