#pragma once

#include <mutex>

/// The host's non-recursive mutex. Locking it twice on one thread is an error of the caller.
class ThreadMutex
{
public:
    void lock() { mMutex.lock(); }
    bool try_lock() { return mMutex.try_lock(); }
    void unlock() { mMutex.unlock(); }

private:
    std::mutex mMutex;
};

/// Scoped locks, held from construction to the end of the block.
template <class Mutex>
using ThreadLockGuard = std::lock_guard<Mutex>;
template <class Mutex>
using ThreadUniqueLock = std::unique_lock<Mutex>;
