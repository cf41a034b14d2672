#pragma once

#include <functional>

namespace test {

/// Makes one system call of this program behave unusually, until the destructor. Only one object may exist at
/// a time.
class FaultySystem
{
public:
    enum class Call
    {
        CopyFileRange, ///< without a reason: copies holes as holes, as some file systems do
        Create,        ///< opening a file that must be new
        Fallocate,
        Pread,  ///< without a reason: is interrupted each second time, and otherwise reads one byte
        Pwrite, ///< the same with at most 100 bytes
        SyncFileRange
    };

    /// @param reason the number for `errno`, with which the call fails
    explicit FaultySystem(Call call, int reason = 0);
    /// Does something before each call, in the thread that makes it.
    FaultySystem(Call call, std::function<void()> before);
    ~FaultySystem();
    FaultySystem(const FaultySystem&) = delete;
    FaultySystem& operator=(const FaultySystem&) = delete;
};

} // namespace test
