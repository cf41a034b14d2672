#pragma once

#include <cstdint>
#include <string>

#include "OrvLibrary/host/WebUtils.h"

/// Reads the header fields that describe a body.
namespace HttpHeaders {

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
