#pragma once

#include "OrvLibrary/host/impl/ZipTargets_p.h"

namespace ZipUtils {

/// The targets of the innermost batch of this thread; null when there is none.
ZipTargets* currentBatch();

} // namespace ZipUtils
