#pragma once

#include <string>

/// Version tags that are the SHA-1 of a catalog's contents. What a tag is, the service decides; only one of
/// this form can be compared with a file.
namespace Sha1Tag {

/// 40 hexadecimal digits.
bool isSha1(const std::string& tag);
/// Whether two tags are the same, whatever the letter case of their digits.
bool equal(const std::string& left, const std::string& right);

} // namespace Sha1Tag
