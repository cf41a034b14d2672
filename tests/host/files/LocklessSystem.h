#pragma once

#include <functional>

namespace test {

/// A system whose files have no locks, from construction to the end of the block. Where a thread of this
/// program would sleep, `meanwhile` is done instead. One at a time.
class LocklessSystem
{
public:
    explicit LocklessSystem(std::function<void()> meanwhile);
    ~LocklessSystem();
    LocklessSystem(const LocklessSystem&) = delete;
    LocklessSystem& operator=(const LocklessSystem&) = delete;
};

} // namespace test
