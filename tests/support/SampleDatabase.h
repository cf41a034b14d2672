#pragma once

#include <cstddef>
#include <string>

namespace test {

/// The bytes of a small sound database that holds `content`, the same for the same content.
/// @param bytes the database is at least so large
std::string sampleDatabase(const std::string& content, std::size_t bytes = 0);

/// The bytes of a small sound database whose check takes several seconds.
std::string slowDatabase();

/// Makes the check of a database take so long. The file may be missing.
void slowDownCheck(const std::string& file);

} // namespace test
