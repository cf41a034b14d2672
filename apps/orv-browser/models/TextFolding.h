#pragma once

#include <string>

/// Texts as a search compares them: "cafe" and "Café" become the same. Any thread.
namespace TextFolding {

/// The text in small letters and without accents.
/// @param utf8 what the user reads or types
/// @return UTF-8; blanks and punctuation stay as they are
std::string folded(const std::string& utf8);

} // namespace TextFolding
