#include "tests/support/ServiceCalls.h"

namespace test {

namespace {

std::size_t index(Service service)
{
    return static_cast<std::size_t>(service);
}

} // namespace

const char* serviceName(Service service)
{
    constexpr const char* kNames[kServiceCount] = {
        "PathUtils", "PrefSet", "StringTable", "MessagingSystem", "Application", "FileSearch", "Curl"};
    return kNames[index(service)];
}

bool ServiceCalls::Plan::hits(std::size_t number) const
{
    return call != 0 && (repeat == Repeat::Once ? number == call : number >= call);
}

void ServiceCalls::planFault(std::size_t call, Fault fault, Repeat repeat)
{
    const ThreadLockGuard<ThreadMutex> guard(mMutex);
    mPlan = {call, fault, repeat};
}

void ServiceCalls::planFault(Service service, std::size_t call, Fault fault, Repeat repeat)
{
    const ThreadLockGuard<ThreadMutex> guard(mMutex);
    mServicePlans[index(service)] = {call, fault, repeat};
}

void ServiceCalls::onCall(std::function<void(std::size_t)> hook)
{
    const ThreadLockGuard<ThreadMutex> guard(mMutex);
    mHook = std::move(hook);
}

void ServiceCalls::reset()
{
    const ThreadLockGuard<ThreadMutex> guard(mMutex);
    mHook = nullptr;
    mPlan = {};
    mServicePlans.fill({});
    mCounts.fill(0);
    mOperations.clear();
    mFaults = 0;
}

std::size_t ServiceCalls::total() const
{
    const ThreadLockGuard<ThreadMutex> guard(mMutex);
    return mOperations.size();
}

std::size_t ServiceCalls::count(Service service) const
{
    const ThreadLockGuard<ThreadMutex> guard(mMutex);
    return mCounts[index(service)];
}

std::vector<std::string> ServiceCalls::operations() const
{
    const ThreadLockGuard<ThreadMutex> guard(mMutex);
    return mOperations;
}

std::size_t ServiceCalls::faults() const
{
    const ThreadLockGuard<ThreadMutex> guard(mMutex);
    return mFaults;
}

bool ServiceCalls::enter(Service service, const char* operation)
{
    ThreadUniqueLock<ThreadMutex> guard(mMutex);
    if (const auto hook = mHook) {
        const std::size_t next = mOperations.size() + 1;
        guard.unlock();
        hook(next);
        guard.lock();
    }
    mOperations.push_back(std::string(serviceName(service)) + "::" + operation);
    const std::size_t number = ++mCounts[index(service)];
    const Plan& own = mServicePlans[index(service)];
    const Plan* const plan = mPlan.hits(mOperations.size()) ? &mPlan : own.hits(number) ? &own : nullptr;
    if (!plan)
        return false;
    ++mFaults;
    if (plan->fault == Fault::Throw)
        throw InjectedFault("injected at " + mOperations.back());
    return true;
}

} // namespace test
