#pragma once

#include <memory>

#include "OrvLibrary/host/ProgressSubject.h"
#include "OrvLibrary/host/fileString.h"

namespace OrvHost {

/// Lets one import or undo at a time change the libraries of a root, also where several programs run. The
/// lock ends with the process, however it dies.
class ImportLock
{
public:
    /// Locks "imports.lock" in a folder that exists, and leaves the file there. Waits up to a minute while
    /// another program holds the lock.
    /// @param progress may be null; a cancel ends the wait
    /// @throws std::runtime_error when the lock cannot be had
    ImportLock(const fileString& folder, const std::shared_ptr<ProgressSubject>& progress);
    ~ImportLock();
    ImportLock(const ImportLock&) = delete;
    ImportLock& operator=(const ImportLock&) = delete;

private:
    int mDescriptor;
};

} // namespace OrvHost
