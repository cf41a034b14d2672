#pragma once

#include <cerrno>
#include <functional>

namespace test {

/// Simulates a file system without file locks, until the destructor. Each sleep of this program runs
/// `meanwhile` instead. Only one object may exist at a time.
class LocklessSystem
{
public:
    /// @param reason what the system answers to each request for a lock
    explicit LocklessSystem(std::function<void()> meanwhile, int reason = ENOLCK);
    ~LocklessSystem();
    LocklessSystem(const LocklessSystem&) = delete;
    LocklessSystem& operator=(const LocklessSystem&) = delete;
};

} // namespace test
