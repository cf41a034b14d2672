#pragma once

#include <memory>

#include <sys/stat.h>

#include "OrvLibrary/host/impl/zip/ZipDirectory_p.h"

namespace ZipUtils {

/// Keeps the last directories that were read. Callers who read one member after the other by address would
/// otherwise read the directory each time. A directory is valid as long as the file's identity, size and
/// times are the same. Any thread may use the cache.
namespace DirectoryCache {

/// @return null if the file is not in the cache or has changed
std::shared_ptr<const ZipDirectory> find(const struct stat& file);
/// Keeps a directory, with two exceptions: one that is very large, and one whose file has just been written,
/// because the next change might leave the same time.
void keep(const struct stat& file, std::shared_ptr<const ZipDirectory> directory);

} // namespace DirectoryCache

} // namespace ZipUtils
