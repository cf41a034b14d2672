#pragma once

#include <chrono>
#include <functional>
#include <string>

#include <QtGlobal>

#include "OrvHost/OrvHostExport.h"
#include "OrvLibrary/host/fileString.h"

namespace OrvHost {

/// Prevents other programs from doing the same thing at the same time, as long as the object lives. It makes
/// a file, locks it and removes it at the end. The system releases the lock if the process dies; a leftover
/// file does no harm. On file systems without locks, nothing is locked.
///
/// All functions throw std::runtime_error if another program has the lock or the file cannot be made.
class ORVHOST_EXPORT HostLock
{
public:
    using Milliseconds = std::chrono::milliseconds;
    /// How long a change waits for another change.
    static constexpr Milliseconds kPatience{5'000};

    /// The lock of an update; only one update may run on a root. Does not wait for another update, only for a
    /// program that looks whether one is running: 0.1 s. The file is "update.lock" in the temporary folder of
    /// the installed path service.
    static HostLock ofUpdate();
    /// The lock for reading something, changing it and writing it back. Waits for other programs.
    /// @param subject what will be changed, such as "filters"; the file is then "filters.lock" in the
    /// temporary folder
    static HostLock ofChange(const std::string& subject, Milliseconds patience = kPatience);
    /// The same for something in a folder that several roots may use. The file is then ".filters.lock" in
    /// that folder.
    static HostLock ofChange(const fileString& folder, const std::string& subject,
                             Milliseconds patience = kPatience);
    /// The lock for an import or an undo; only one may change the libraries of a root. Waits up to a minute.
    /// The file is "imports.lock" in `folder`.
    /// @param isCancelled called while waiting; if it returns true, the exception says "cancelled"
    static HostLock ofImport(const fileString& folder, const std::function<bool()>& isCancelled);

    /// The lock file of the update that is running on the root; empty if there is none. Makes no file and
    /// does not wait. Only for this library.
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
    int mDescriptor = -1; ///< -1 after a move
};

} // namespace OrvHost
