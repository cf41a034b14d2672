#pragma once

#include <string>
#include <vector>

namespace fuzz {

/// An archive described in lines, which lets a fuzzer get past sizes and checksums:
///
///     a.png=content          a member
///     sd a.png=content       the same with oddities, one letter each
///     !text                  a comment for the archive
///     ^text                  bytes in front of it
///     @17=x                  at the end, the byte at place 17 (modulo the size) becomes an x
///
/// Oddities: s stored, d data descriptor, 6 zip64 sizes, u UTF-8 flag, e encrypted, x extra field, m comment,
/// k unknown method, c wrong checksum, z wrong size, n another name in the local header, r not a deflate
/// stream.
std::string archiveOf(const std::vector<std::string>& lines);

} // namespace fuzz
