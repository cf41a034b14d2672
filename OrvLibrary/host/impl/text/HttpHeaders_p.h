#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "OrvLibrary/host/WebUtils.h"

/// Writes the header lines of a request, and reads the header fields that describe a body.
namespace HttpHeaders {

/// The lines of a request without control characters (0x00-0x1F and 0x7F). If they do not say what a cache
/// may do, a line is added: a cache between us and the server must not answer with an old copy.
std::vector<std::string> wireLines(const std::vector<std::string>& lines);

/// The announced length of the body; -1 if it is missing or unreadable.
std::int64_t contentLength(const WebUtils::HeaderMap& headers);
/// The length of the whole file if the answer brings all bytes from `from` on; otherwise -1.
std::int64_t lengthOfRest(const WebUtils::HeaderMap& headers, std::int64_t from);
/// Whether the answer can be of the validator's version. If the answer names no version, it can.
bool isOfVersion(const WebUtils::HeaderMap& headers, const std::string& validator);
/// Why a body cannot be stored; empty if it can. An encoded body (gzip, for example) would be stored as a
/// different file than its tag describes.
std::string encodingProblem(const WebUtils::HeaderMap& headers);

} // namespace HttpHeaders
