#pragma once

#include <functional>
#include <optional>
#include <string>

/// Work in a process of its own, for what a test cannot do to itself: die, lose rights, mount. The child
/// shares no failure with the test: it says what it found by its exit status, 0 to 255.
namespace test {

/// How a child ended.
struct ChildEnd
{
    int status = -1; ///< exit status; -1 when a signal ended it
    int signal = 0;  ///< the signal, or 0
};

ChildEnd runInChild(const std::function<int()>& work);

/// Runs as a user without rights. Where the test has no rights itself, that is the user who runs it.
ChildEnd runWithoutRights(const std::function<int()>& work);

/// Runs with a new file system of a fixed size mounted on `folder`, seen by the child only.
/// @return none, with `reason`, where the test may not mount
std::optional<ChildEnd> runOnSmallDisk(const std::string& folder, int kilobytes,
                                       const std::function<int()>& work, std::string& reason);

/// A process that does `work`, says so, and waits until the object is destroyed, which kills it.
class WaitingChild
{
public:
    /// Returns when `work` is done.
    explicit WaitingChild(const std::function<void()>& work);
    ~WaitingChild();
    WaitingChild(const WaitingChild&) = delete;
    WaitingChild& operator=(const WaitingChild&) = delete;

private:
    int mProcess = -1;
};

/// A folder on another device than the temporary folder, removed at the end of the block.
class OtherDevice
{
public:
    OtherDevice();
    ~OtherDevice();
    OtherDevice(const OtherDevice&) = delete;
    OtherDevice& operator=(const OtherDevice&) = delete;

    /// Empty when there is none.
    const std::string& path() const { return mPath; }

private:
    std::string mPath;
};

} // namespace test
