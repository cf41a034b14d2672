#pragma once

#include <chrono>
#include <functional>
#include <string>

#include <QtGlobal>

#include "OrvHost/OrvHostExport.h"
#include "OrvLibrary/host/fileString.h"

namespace OrvHost {

/// Keeps other programs of ours from doing the same thing at the same time, for as long as the object lives.
/// It locks a file, which it makes and removes. The lock ends with the process, however it dies; a lock file
/// that is left over does no harm. A file system without locks is used without them.
///
/// All functions throw std::runtime_error when another program keeps the lock, or when the file cannot be
/// made.
class ORVHOST_EXPORT HostLock
{
public:
    using Milliseconds = std::chrono::milliseconds;
    /// How long a change waits for another one.
    static constexpr Milliseconds kPatience{5'000};

    /// Keeps a second update off a root while one runs there. It fails at once. The file is "update.lock" in
    /// the installed path service's temporary folder.
    static HostLock ofUpdate();
    /// Keeps others from changing a thing while one reads it, changes it and writes it back. It waits.
    /// @param subject what is going to be changed, such as "filters"; the file is then "filters.lock" in the
    /// temporary folder
    static HostLock ofChange(const std::string& subject, Milliseconds patience = kPatience);
    /// The same for a thing in one folder, of whatever root. The file is then ".filters.lock" in that folder.
    static HostLock ofChange(const fileString& folder, const std::string& subject,
                             Milliseconds patience = kPatience);
    /// Lets one import or undo at a time change the libraries of a root. It waits up to a minute. The file is
    /// "imports.lock" in `folder`.
    /// @param isCancelled asked while the lock is waited for; when it says yes, the wait ends with
    /// "cancelled"
    static HostLock ofImport(const fileString& folder, const std::function<bool()>& isCancelled);

    /// The lock file of an update that runs on the root; empty when none does. It makes no file and does not
    /// wait. For this library's own use.
    Q_DECL_HIDDEN static fileString ofRunningUpdate();

    HostLock(HostLock&& other) noexcept;
    HostLock& operator=(HostLock&&) = delete;
    /// Removes the file.
    ~HostLock();

private:
    using CancelQuestion = std::function<bool()>;

    HostLock(const fileString& path, const std::string& busyText, Milliseconds patience,
             const CancelQuestion& isCancelled = {});
    void open();

    std::string mPath;
    int mDescriptor = -1; ///< none after a move
};

} // namespace OrvHost
