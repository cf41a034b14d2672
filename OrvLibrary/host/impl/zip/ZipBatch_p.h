#pragma once

#include "OrvLibrary/host/impl/zip/ZipTargets_p.h"

namespace ZipUtils {

/// The targets of the innermost batch of this thread; null when there is none.
ZipTargets* currentBatch();
/// Opens an archive; within a batch, one that it opened before serves again while the file is the same.
/// @throws std::runtime_error for an unsound archive
std::shared_ptr<const ZipArchive> openArchive(const fileString& path);

} // namespace ZipUtils
