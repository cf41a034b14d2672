#pragma once

#include <cstddef>
#include <string>

namespace test {

/// The bytes of a small sound database that holds `content`, the same for the same content.
/// @param bytes the database is at least so large
std::string sampleDatabase(const std::string& content, std::size_t bytes = 0);

} // namespace test
