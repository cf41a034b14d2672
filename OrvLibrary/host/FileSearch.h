#pragma once

#include "OrvLibrary/OrvLibraryExport.h"
#include "OrvLibrary/host/fileString.h"

/// The host's cache of file look-ups. The library only tells it which folders have changed. A host without
/// such a cache needs none; the default does nothing. May be called from any thread.
class ORVLIBRARY_EXPORT FileSearch
{
public:
    FileSearch();
    virtual ~FileSearch();
    FileSearch(const FileSearch&) = delete;
    FileSearch& operator=(const FileSearch&) = delete;

    /// Forgets everything cached about the files in `folder`.
    virtual void resetFileSearch(const fileString& folder) = 0;

    static FileSearch& get();
    /// Makes `get` return `service`, or the default if null. The caller keeps ownership.
    /// @return the former service; null if it was the default
    static FileSearch* install(FileSearch* service);
};
