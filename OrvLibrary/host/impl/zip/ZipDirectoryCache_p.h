#pragma once

#include <memory>

#include <sys/stat.h>

#include "OrvLibrary/host/impl/zip/ZipDirectory_p.h"

namespace ZipUtils {

/// The directories that were read last, for those who read one member after the other by its address. They
/// are found again as long as the file is the same, by its identity, size and times. Any thread may use them.
namespace DirectoryCache {

/// @return null when the file is unknown, or has changed
std::shared_ptr<const ZipDirectory> find(const struct stat& file);
/// Keeps a directory, unless it is very large, or its file was written to so recently that the next change
/// might leave the same time.
void keep(const struct stat& file, std::shared_ptr<const ZipDirectory> directory);

} // namespace DirectoryCache

} // namespace ZipUtils
