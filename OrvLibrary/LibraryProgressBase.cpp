#include "OrvLibrary/LibraryProgressBase.h"

LibraryProgressBase::LibraryProgressBase() = default;
LibraryProgressBase::LibraryProgressBase(const LibraryProgressBase&) = default;
LibraryProgressBase& LibraryProgressBase::operator=(const LibraryProgressBase&) = default;
LibraryProgressBase::~LibraryProgressBase() = default;
