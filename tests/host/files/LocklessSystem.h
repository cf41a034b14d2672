#pragma once

#include <functional>

namespace test {

/// Simulates a file system without file locks, until the destructor. Each sleep of this program runs
/// `meanwhile` instead. Only one object may exist at a time.
class LocklessSystem
{
public:
    explicit LocklessSystem(std::function<void()> meanwhile);
    ~LocklessSystem();
    LocklessSystem(const LocklessSystem&) = delete;
    LocklessSystem& operator=(const LocklessSystem&) = delete;
};

} // namespace test
