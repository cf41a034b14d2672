#pragma once

#include <memory>
#include <string>

#include "OrvHost/OrvHostExport.h"
#include "OrvLibrary/host/LockingFStream.h"
#include "OrvLibrary/host/fileString.h"

namespace OrvHost {

/// Keeps other programs of ours from changing the same thing while one reads it, changes it and writes it
/// back. The lock ends with the process, however it dies; a lock file that is left over does no harm.
class ORVHOST_EXPORT ChangeLock
{
public:
    /// Waits a few seconds for the lock.
    /// @param subject what is going to be changed, such as "filters"; names "filters.lock" in the temporary
    /// folder
    /// @throws std::runtime_error when another program keeps the lock, or when the file cannot be made
    explicit ChangeLock(const std::string& subject);
    /// The same for what lies in one folder, of whatever root: ".filters.lock" in that folder.
    ChangeLock(const fileString& folder, const std::string& subject);
    /// Removes the file.
    ~ChangeLock();
    ChangeLock(const ChangeLock&) = delete;
    ChangeLock& operator=(const ChangeLock&) = delete;

private:
    void lock(const std::string& subject);

    fileString mPath;
    std::unique_ptr<LockingFStream> mStream;
};

} // namespace OrvHost
