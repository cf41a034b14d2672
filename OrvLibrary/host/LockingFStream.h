#pragma once

#include <ios>
#include <iostream>
#include <memory>

#include "OrvLibrary/OrvLibraryExport.h"
#include "OrvLibrary/host/fileString.h"

/// A file stream that holds an advisory lock on the file while it is open: shared for reading, exclusive for
/// writing, waited for at most five seconds; a stream that does not get it does not open.
///
/// Output goes to a file beside the target, which a successful `close()` syncs and renames over it. Until
/// then the target keeps its old content; a stream that is destroyed without `close()`, or whose writing
/// failed, leaves it so for ever and removes the file beside. A target that is a link is followed; a target
/// that exists but cannot be written does not open.
///
/// Failures set the stream's state, and so throw `std::ios_base::failure` where the caller asked for
/// exceptions; opening and closing leave the system's reason for a failure in `errno`. Numbers are written in
/// the classic locale. One stream belongs to one thread.
class ORVLIBRARY_EXPORT LockingFStream : public std::iostream
{
public:
    /// Opens for reading (`std::ios_base::in`), writing (`out | trunc`) or appending (`app`, which writes in
    /// place).
    LockingFStream(const fileString& path, std::ios_base::openmode mode);
    /// Abandons output that was not closed.
    ~LockingFStream() override;
    LockingFStream(const LockingFStream&) = delete;
    LockingFStream& operator=(const LockingFStream&) = delete;

    bool is_open() const;
    /// Ends the stream: for output, the moment at which the target takes its new content. On failure the
    /// target keeps its old content and `failbit` is set. (Where nothing but the sync of its folder failed,
    /// the target has the new content, which may not survive a power cut.)
    void close();

private:
    class Private;
    std::unique_ptr<Private> mPrivate;
};
