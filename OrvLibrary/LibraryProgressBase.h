#pragma once

#include "OrvLibrary/OrvLibraryExport.h"

/// The base class of everything that runs library work and reports its progress. It has no data, only a
/// virtual destructor.
class ORVLIBRARY_EXPORT LibraryProgressBase
{
public:
    LibraryProgressBase();
    LibraryProgressBase(const LibraryProgressBase&);
    LibraryProgressBase& operator=(const LibraryProgressBase&);
    virtual ~LibraryProgressBase();
};
