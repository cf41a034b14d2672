#pragma once

#include <string>

namespace host {

/// Makes a unique file name that `claimTempFolder` recognises as temporary.
std::string makeTempName(const std::string& extension);

/// Marks `folder` as used by this process until its end, with a shared lock on the folder. If no other
/// process uses it, first removes the files that killed processes left there, recognised by the names that
/// `makeTempName` makes. Does nothing if the folder cannot be locked.
void claimTempFolder(const std::string& folder);

} // namespace host
