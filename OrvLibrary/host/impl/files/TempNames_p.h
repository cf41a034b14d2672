#pragma once

#include <string>

namespace host {

/// A file name that no other call makes, in the form by which it is known as a temporary one.
std::string makeTempName(const std::string& extension);

/// Says that this process uses temporary names in `folder` from now on, for as long as it lives, by a shared
/// lock on the folder. Where nobody else does, what killed processes left there is removed first: files whose
/// names were made by `makeTempName`. A folder that cannot be locked is left alone.
void claimTempFolder(const std::string& folder);

} // namespace host
