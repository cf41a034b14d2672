#pragma once

#include <cstdint>

#include "OrvLibrary/OrvLibraryExport.h"
#include "OrvLibrary/host/UnicodeString.h"

/// The progress and cancel object of the host's progress dialog, handed to an operation as
/// `std::shared_ptr<ProgressSubject>`; an empty pointer means that nobody looks.
/// The operation calls it on its own thread; the implementation makes it safe for the interface thread to ask
/// for the cancel meanwhile.
class ORVLIBRARY_EXPORT ProgressSubject
{
public:
    ProgressSubject();
    virtual ~ProgressSubject();
    ProgressSubject(const ProgressSubject&) = delete;
    ProgressSubject& operator=(const ProgressSubject&) = delete;

    /// True once the user asked to cancel.
    /// @param processEvents whether the host may run its event loop first; the library passes false
    virtual bool checkCancel(bool processEvents) = 0;
    /// Starts a sub-range.
    /// @param total the steps of the sub-range, in the unit that the operation documents
    virtual void createSubProgress(std::uint64_t total) = 0;
    /// Advances one step and sets both labels.
    virtual void increment(const marl::unicode::String& label1, const marl::unicode::String& label2) = 0;
    /// Sets both labels and advances nothing.
    virtual void updateLabels(const marl::unicode::String& label1, const marl::unicode::String& label2) = 0;
    /// Tells how many bytes of content were done since the last call, at most 8 MB at a time. Over a run that
    /// ends well they add up to the total of the sub-progress. The one of this class ignores them.
    virtual void advanceBytes(std::uint64_t bytes);
};
