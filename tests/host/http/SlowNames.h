#pragma once

namespace test {

/// Looking up the name "slow.test" takes several seconds, until the destructor. Only one object may exist at
/// a time.
class SlowNames
{
public:
    SlowNames();
    ~SlowNames();
    SlowNames(const SlowNames&) = delete;
    SlowNames& operator=(const SlowNames&) = delete;
};

} // namespace test
