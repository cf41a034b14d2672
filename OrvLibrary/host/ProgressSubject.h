#pragma once

#include <cstdint>

#include "OrvLibrary/OrvLibraryExport.h"
#include "OrvLibrary/host/UnicodeString.h"

/// The host's object for the progress and the cancelling of an operation. It is passed as a
/// `std::shared_ptr<ProgressSubject>`; an empty pointer means that nobody watches. The operation calls it on
/// its own thread. The implementation must allow the interface thread to set the cancel at the same time.
class ORVLIBRARY_EXPORT ProgressSubject
{
public:
    ProgressSubject();
    virtual ~ProgressSubject();
    ProgressSubject(const ProgressSubject&) = delete;
    ProgressSubject& operator=(const ProgressSubject&) = delete;

    /// True if the user has cancelled.
    /// @param processEvents whether the host may run its event loop first; the library passes false
    virtual bool checkCancel(bool processEvents) = 0;
    /// Begins a part of the progress.
    /// @param total the number of steps in the part, in the unit that the operation documents
    virtual void createSubProgress(std::uint64_t total) = 0;
    /// Counts one step and sets both labels.
    virtual void increment(const marl::unicode::String& label1, const marl::unicode::String& label2) = 0;
    /// Sets both labels and counts nothing.
    virtual void updateLabels(const marl::unicode::String& label1, const marl::unicode::String& label2) = 0;
    /// Reports the bytes of content finished since the last call, at most 8 MB. In a successful run they add
    /// up to the total of the part. This class ignores them.
    virtual void advanceBytes(std::uint64_t bytes);
};
