#pragma once

#include "OrvLibrary/host/fileString.h"
#include "OrvLibrary/json/json_reader.h"

namespace json {

/// Larger files are not read.
constexpr std::int64_t kLargestFile = std::int64_t(256) << 20;

/// Reads a file under a shared lock and parses it. If the text cannot be parsed, returns a node that holds
/// nothing.
/// @throws std::runtime_error if there is no such regular file, or it cannot be read or is too large
grammar<char>::variant readFile(const fileString& path);

} // namespace json
