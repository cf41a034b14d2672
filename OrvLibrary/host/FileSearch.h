#pragma once

#include "OrvLibrary/OrvLibraryExport.h"
#include "OrvLibrary/host/fileString.h"

/// The host's cached look-ups of files. The library only says which folders changed; a host that caches
/// nothing needs none, and the default keeps no cache. May be called from any thread.
class ORVLIBRARY_EXPORT FileSearch
{
public:
    FileSearch();
    virtual ~FileSearch();
    FileSearch(const FileSearch&) = delete;
    FileSearch& operator=(const FileSearch&) = delete;

    /// Drops what is known of the files in `folder`.
    virtual void resetFileSearch(const fileString& folder) = 0;

    static FileSearch& get();
    /// Makes `service` the one that `get` returns; null for the default. The pointer is not owned.
    /// @return the former one, null when it was the default
    static FileSearch* install(FileSearch* service);
};
