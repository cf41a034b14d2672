#pragma once

#include <string>

#include "OrvHost/OrvHostExport.h"

/// Takes out of texts what is nobody else's business, before they leave the machine.
namespace OrvHost::Masking {

/// Without passwords in addresses, and without the values of "key", "token", "password", "secret" and "auth"
/// in queries: "***" stands for them.
ORVHOST_EXPORT std::string withoutSecrets(const std::string& text);
/// Without the user's name and home folder as well.
ORVHOST_EXPORT std::string withoutNames(const std::string& text);

} // namespace OrvHost::Masking
