#pragma once

#include <string>

/// Makes texts comparable for a search: "cafe" and "Café" become the same. Any thread.
namespace TextFolding {

/// The text in lower case and without accents.
/// @param utf8 a text that the user reads or types
/// @return UTF-8; blanks and punctuation stay
std::string folded(const std::string& utf8);

} // namespace TextFolding
