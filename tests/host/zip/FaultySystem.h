#pragma once

namespace test {

/// Lets one system call of this program fail, until the destructor. Only one object may exist at a time.
class FaultySystem
{
public:
    enum class Call
    {
        Fallocate,
        Pread, ///< does not fail, but reads one byte at a time
        SyncFileRange
    };

    /// @param reason the number for `errno`
    explicit FaultySystem(Call call, int reason = 0);
    ~FaultySystem();
    FaultySystem(const FaultySystem&) = delete;
    FaultySystem& operator=(const FaultySystem&) = delete;
};

} // namespace test
