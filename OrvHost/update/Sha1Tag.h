#pragma once

#include "OrvHost/OrvHostExport.h"
#include <string>

/// Version tags that are the SHA-1 of a catalog's content. The service may use other tags, but only these can
/// be compared with a file.
namespace OrvHost::Sha1Tag {

/// 40 hexadecimal digits.
ORVHOST_EXPORT bool isSha1(const std::string& tag);
/// Whether two tags are equal, without regard to letter case.
ORVHOST_EXPORT bool equal(const std::string& left, const std::string& right);

} // namespace OrvHost::Sha1Tag
