#pragma once

#include <cstddef>
#include <string>

namespace test {

/// The bytes of a small sound database that holds `content`. The same content gives the same bytes.
/// @param bytes the minimum size of the database
std::string sampleDatabase(const std::string& content, std::size_t bytes = 0);

/// The bytes of a small sound database whose check takes several seconds.
std::string slowDatabase();

/// Makes the check of a database take several seconds. Creates the file if it is missing.
void slowDownCheck(const std::string& file);

} // namespace test
