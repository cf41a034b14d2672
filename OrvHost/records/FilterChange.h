#pragma once

#include <memory>
#include <vector>

#include "OrvHost/OrvHostExport.h"
#include "OrvHost/update/ChangeLock.h"
#include "OrvLibrary/LibraryFilterManager.h"

namespace OrvHost {

/// One change of the filters, from their reading to their writing; other programs wait meanwhile.
class ORVHOST_EXPORT FilterChange
{
public:
    /// @param other another filter file that changes with them; empty for none
    /// Needs the host's services.
    /// @throws std::runtime_error when another program does not come to its end, or when the file was read in
    /// one way now and in another then, so that a change would lose filters
    explicit FilterChange(const fileString& other = {});

    LibraryFilterManager& filters() { return mFilters; }

    /// Writes list and current id, an empty list too, and reads them back as a fresh start would.
    /// @return the copy that keeps what the library could not read of the file, for the user to be told;
    /// empty when it could read all
    /// @throws std::runtime_error when the file, or the copy, cannot be written
    fileString save();

    /// To be called before a filter file is written: keeps a copy of one that exists and that the library
    /// cannot read as a whole.
    /// @return the copy; empty when none was needed
    /// @throws std::runtime_error when the file cannot be written, or the copy cannot be made
    static fileString prepareToOverwrite(const fileString& path);

private:
    std::vector<std::unique_ptr<ChangeLock>> mLocks;
    LibraryFilterManager& mFilters;
};

} // namespace OrvHost
