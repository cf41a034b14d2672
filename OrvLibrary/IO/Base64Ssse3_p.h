#pragma once

#include "OrvLibrary/IO/Base64Kernels_p.h"

namespace base64 {

/// Sixteen characters at a time; null where the processor lacks the instructions.
const Kernels* ssse3Kernels();

} // namespace base64
