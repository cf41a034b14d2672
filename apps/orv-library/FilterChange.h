#pragma once

#include <memory>
#include <vector>

#include "OrvHost/update/ChangeLock.h"
#include "OrvLibrary/LibraryFilterManager.h"
#include "apps/orv-library/Session.h"

/// One change of the filters, from their reading to their writing; other programs wait meanwhile.
class FilterChange
{
public:
    /// @param other another filter file that changes with them; empty for none
    /// @throws std::runtime_error when another program does not come to its end, CommandFailure when the file
    /// was read in one way now and in another then, so that a change would lose filters
    explicit FilterChange(Session& session, const fileString& other = {});

    LibraryFilterManager& filters() { return mFilters; }

    /// Writes list and current id, an empty list too, and reads them back as a fresh start would. What the
    /// library could not read of the file is kept as a copy, and the user is told.
    /// @throws CommandFailure when the file, or the copy, cannot be written
    void save();

    /// To be called before a filter file is written: keeps a copy of one that exists and that the library
    /// cannot read as a whole.
    /// @throws CommandFailure when the file cannot be written, or the copy cannot be made
    static void prepareToOverwrite(const fileString& path);

private:
    AppHost& mHost; ///< the folders that the others need
    std::vector<std::unique_ptr<ChangeLock>> mLocks;
    LibraryFilterManager& mFilters;
};
