#pragma once

#include "OrvLibrary/IO/Base64Kernels_p.h"

namespace base64 {

/// Handles sixteen characters at a time. Null if the processor lacks the instructions.
const Kernels* ssse3Kernels();

} // namespace base64
