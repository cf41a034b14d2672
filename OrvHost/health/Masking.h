#pragma once

#include <string>

#include "OrvHost/OrvHostExport.h"

/// Removes private data from texts before they leave the machine.
namespace OrvHost::Masking {

/// Replaces by "***": passwords in addresses, and the values of "key", "token", "password", "secret" and
/// "auth" in queries.
ORVHOST_EXPORT std::string withoutSecrets(const std::string& text);
/// Also replaces the user's name and home folder.
ORVHOST_EXPORT std::string withoutNames(const std::string& text);

} // namespace OrvHost::Masking
