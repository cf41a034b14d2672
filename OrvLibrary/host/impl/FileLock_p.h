#pragma once

#include <string>

/// An exclusive advisory lock on a file that its users replace by renaming: the lock is on the file that
/// stands under the path when it is got. A missing file is created empty. Waits at most five seconds.
class FileLock
{
public:
    explicit FileLock(const std::string& path);
    ~FileLock();
    FileLock(const FileLock&) = delete;
    FileLock& operator=(const FileLock&) = delete;

    bool isHeld() const { return mDescriptor >= 0; }
    /// Why the lock is not held.
    const std::string& reason() const { return mReason; }

private:
    void open(const std::string& path);
    bool lock();
    void fail(int error);
    void close();

    int mDescriptor = -1;
    std::string mReason;
};
