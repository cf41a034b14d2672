#pragma once

#include <string>

#include "OrvLibrary/host/ProgressSubject.h"
#include "OrvLibrary/host/fileString.h"

/// `SHA1` of the library for those who want to watch and to cancel; it takes about twice as long.
namespace OrvHost::FileHash {

/// SHA-1 of a file's contents as 40 lower-case hexadecimal digits; empty for what is not a readable regular
/// file.
/// @param progress is told the size and the bytes, a megabyte at a time, and asked for a cancel
/// @throws ZipUtils::Cancelled
std::string sha1Hex(const fileString& file, ProgressSubject& progress);

} // namespace OrvHost::FileHash
