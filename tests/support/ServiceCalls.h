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

/// What happens at a planned call.
enum class Fault
{
    Fail, ///< the operation's own failure result, without a call of the service behind; others go through
    Throw ///< an `InjectedFault` before the call
};

/// Thrown at a planned call.
class InjectedFault : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

/// Counts the calls of all services together and of each alone, and says which are to go wrong. Calls count
/// from 1. Safe from any thread.
class ServiceCalls
{
public:
    /// Whether the fault happens once, or at every call from then on.
    enum class Repeat
    {
        Once,
        ForEver
    };

    /// Plans a fault at a call, counted over all services.
    void planFault(std::size_t call, Fault fault, Repeat repeat = Repeat::Once);
    /// Plans a fault at a call of one service, counted over that one.
    void planFault(Service service, std::size_t call, Fault fault, Repeat repeat = Repeat::Once);
    /// Calls `hook` at the start of every call, with its number over all services and on its thread, before
    /// anything else happens.
    void onCall(std::function<void(std::size_t)> hook);
    /// Forgets plans, counts and the hook.
    void reset();

    std::size_t total() const;
    std::size_t count(Service service) const;
    /// The operations in order, such as "Curl::download".
    std::vector<std::string> operations() const;
    /// How many of the planned faults happened.
    std::size_t faults() const;

    /// Counts a call; for those who forward.
    /// @return whether the operation is to fail
    /// @throws InjectedFault where that is planned
    bool enter(Service service, const char* operation);

private:
    struct Plan
    {
        std::size_t call = 0; ///< 0 for none
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
