#pragma once

#include "OrvLibrary/host/fileString.h"
#include "OrvLibrary/json/json_reader.h"

namespace json {

/// Larger files are not read.
constexpr std::int64_t kLargestFile = std::int64_t(256) << 20;

/// Reads a file under a shared lock and parses it. A text that the parser cannot
/// read gives a node that holds nothing.
/// @throws std::runtime_error when there is no such regular file, when it cannot be read or is too large
grammar<char>::variant readFile(const fileString& path);

} // namespace json
