#pragma once

#include <atomic>
#include <cstddef>
#include <map>
#include <string>
#include <sys/types.h>

namespace test {

/// The files of a small service in one of two versions, by name.
std::map<std::string, std::string> soakContent(int version);

/// A catalog web service in a separate process, so that its memory, descriptors and threads are not measured.
/// About every tenth request fails: the service replies to a request for the index or a file with an error,
/// or cuts the reply off. An update logs each failure in one line.
class SoakService
{
public:
    /// Create the service before the process starts threads.
    SoakService();
    ~SoakService();
    SoakService(const SoakService&) = delete;
    SoakService& operator=(const SoakService&) = delete;

    /// The redirect address for the host.
    std::string redirect() const;
    void setVersion(int version) { mShared->version = version; }
    void setFaulty(bool isFaulty) { mShared->isFaulty = isFaulty; }
    /// The number of failed requests so far.
    std::size_t faults() const { return mShared->faults; }
    std::size_t requests() const { return mShared->requests; }

private:
    /// In memory shared by both processes.
    struct Shared
    {
        std::atomic<int> port{0};
        std::atomic<int> version{0};
        std::atomic<bool> isFaulty{false};
        std::atomic<std::size_t> faults{0};
        std::atomic<std::size_t> requests{0};
    };

    /// Runs in the child until the other end of the pipe `end` is closed.
    [[noreturn]] void serve(int end);

    Shared* mShared = nullptr;
    int mEnd = -1; ///< closing it ends the child
    pid_t mChild = -1;
};

} // namespace test
