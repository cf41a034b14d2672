#pragma once

#include <functional>
#include <optional>
#include <string>

/// Runs work in a process of its own that a test cannot do to itself: die, give up its rights, mount. A
/// failed expectation in the child does not reach the test, so the child reports its result as its exit
/// status, 0 to 255.
namespace test {

/// How a child ended.
struct ChildEnd
{
    int status = -1; ///< exit status; -1 when a signal ended it
    int signal = 0;  ///< the signal, or 0
};

ChildEnd runInChild(const std::function<int()>& work);

/// Runs `work` as a user without rights: as "nobody" if the test runs as root, otherwise as the current user.
ChildEnd runWithoutRights(const std::function<int()>& work);

/// Runs `work` with a new file system of a fixed size mounted on `folder`. Only the child sees the mount.
/// @return none, with `reason`, if the test may not mount
std::optional<ChildEnd> runOnSmallDisk(const std::string& folder, int kilobytes,
                                       const std::function<int()>& work, std::string& reason);

/// A process that does `work`, reports that it is done, and then waits. The destructor kills it.
class WaitingChild
{
public:
    /// Returns after the child has done `work`.
    explicit WaitingChild(const std::function<void()>& work);
    ~WaitingChild();
    WaitingChild(const WaitingChild&) = delete;
    WaitingChild& operator=(const WaitingChild&) = delete;

private:
    int mProcess = -1;
};

/// A folder on a device other than that of the temporary folder. The destructor removes it.
class OtherDevice
{
public:
    OtherDevice();
    ~OtherDevice();
    OtherDevice(const OtherDevice&) = delete;
    OtherDevice& operator=(const OtherDevice&) = delete;

    /// Empty if the machine has no second device.
    const std::string& path() const { return mPath; }

private:
    std::string mPath;
};

} // namespace test
