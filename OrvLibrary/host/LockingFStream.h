#pragma once

#include <ios>
#include <iostream>
#include <memory>

#include "OrvLibrary/OrvLibraryExport.h"
#include "OrvLibrary/host/fileString.h"

/// A file stream that locks its file while it is open: shared for reading, exclusive for writing. The lock is
/// advisory. If it is not available within five seconds, the stream does not open.
///
/// Output goes to a file beside the target. `close()` syncs this file and renames it to the target; until
/// then the target keeps its old content. If the stream is destroyed without `close()`, or if writing failed,
/// the target stays unchanged and the file beside is removed. A link is followed to its target. If the target
/// exists and cannot be written, the stream does not open.
///
/// Failures set the stream's state, which throws `std::ios_base::failure` if the caller asked for exceptions.
/// After a failure to open or close, `errno` has the system's reason. Numbers are written in the classic
/// locale. One stream belongs to one thread.
class ORVLIBRARY_EXPORT LockingFStream : public std::iostream
{
public:
    /// Opens for reading (`std::ios_base::in`), for writing (`out | trunc`) or for appending (`app`, which
    /// writes directly to the file).
    LockingFStream(const fileString& path, std::ios_base::openmode mode);
    /// Drops output if `close` was not called.
    ~LockingFStream() override;
    LockingFStream(const LockingFStream&) = delete;
    LockingFStream& operator=(const LockingFStream&) = delete;

    bool is_open() const;
    /// Ends the stream. For output, this is when the target gets its new content. On failure sets `failbit`,
    /// and the target keeps its old content. (A folder that cannot be synced is no failure: the target has
    /// the new content, but may lose it in a power failure.)
    void close();

private:
    class Private;
    std::unique_ptr<Private> mPrivate;
};
