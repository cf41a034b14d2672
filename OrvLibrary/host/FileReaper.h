#pragma once

#include "OrvLibrary/OrvLibraryExport.h"
#include "OrvLibrary/host/fileString.h"

/// Deletes a file when it is destroyed, unless `cancel` was called. A missing file is not an error.
class ORVLIBRARY_EXPORT FileReaper
{
public:
    explicit FileReaper(const fileString& path);
    ~FileReaper();
    FileReaper(const FileReaper&) = delete;
    FileReaper& operator=(const FileReaper&) = delete;

    /// Keeps the file.
    void cancel() { mArmed = false; }

private:
    fileString mPath;
    bool mArmed = true;
};
