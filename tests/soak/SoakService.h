#pragma once

#include <atomic>
#include <cstddef>
#include <map>
#include <string>
#include <sys/types.h>

namespace test {

/// The files of a small service in one of two versions, by the names that they are asked for.
std::map<std::string, std::string> soakContent(int version);

/// A catalog web service in a process of its own, so that what it needs of memory, descriptors and threads is
/// not counted here. Of the requests for the index and for files every tenth is answered with an error, or
/// its answer is cut, which a run writes down with one line each.
class SoakService
{
public:
    /// To be made before the process has other threads.
    SoakService();
    ~SoakService();
    SoakService(const SoakService&) = delete;
    SoakService& operator=(const SoakService&) = delete;

    /// The address that a host is given.
    std::string redirect() const;
    void setVersion(int version) { mShared->version = version; }
    void setFaulty(bool isFaulty) { mShared->isFaulty = isFaulty; }
    /// Faults so far.
    std::size_t faults() const { return mShared->faults; }
    std::size_t requests() const { return mShared->requests; }

private:
    /// In memory that both processes have.
    struct Shared
    {
        std::atomic<int> port{0};
        std::atomic<int> version{0};
        std::atomic<bool> isFaulty{false};
        std::atomic<std::size_t> faults{0};
        std::atomic<std::size_t> requests{0};
    };

    /// The child's part; ends when `end` does.
    [[noreturn]] void serve(int end);

    Shared* mShared = nullptr;
    int mEnd = -1; ///< closing it ends the child
    pid_t mChild = -1;
};

} // namespace test
