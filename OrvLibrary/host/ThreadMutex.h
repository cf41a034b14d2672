#pragma once

#include <mutex>

/// The host's mutex, not recursive: a thread must not lock it twice.
class ThreadMutex
{
public:
    void lock() { mMutex.lock(); }
    bool try_lock() { return mMutex.try_lock(); }
    void unlock() { mMutex.unlock(); }

private:
    std::mutex mMutex;
};

/// Locks a mutex from construction to the end of the block.
template <class Mutex>
using ThreadLockGuard = std::lock_guard<Mutex>;
template <class Mutex>
using ThreadUniqueLock = std::unique_lock<Mutex>;
