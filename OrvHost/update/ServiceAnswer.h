#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "OrvHost/OrvHostExport.h"
#include "OrvLibrary/host/Curl.h"

/// Reads requests to the web service and its answers, in the way of the library. The functions may be called
/// from any thread.
namespace OrvHost::ServiceAnswer {

/// The version tag in a request's "If-None-Match", without quotes.
ORVHOST_EXPORT std::string sentTag(const std::vector<std::string>& headerLines);

/// `Content-Length`, if it is a number.
ORVHOST_EXPORT std::optional<std::int64_t> length(const std::string& headerText);
/// `ETag` without its quotes and without "W/".
ORVHOST_EXPORT std::optional<std::string> tag(const std::string& headerText);
/// Identifies the version for continuing a download: a strong `ETag` with its quotes, or `Last-Modified`.
/// Empty if the answer has neither.
ORVHOST_EXPORT std::string validator(const std::string& headerText);
/// How long the service wants us to wait (`Retry-After`, in seconds or as a date).
ORVHOST_EXPORT std::optional<std::chrono::seconds> retryAfter(const std::string& headerText);

/// Whether an answer with status 200 is a web page, according to its type.
ORVHOST_EXPORT bool isWebPage(const Curl::Answer& answer);
/// Whether a text that should be a content index is markup, because it begins with "<".
ORVHOST_EXPORT bool isMarkup(const std::string& text);

/// Whether the download service did not send the request, because the address had not answered several times.
ORVHOST_EXPORT bool isLeftAlone(const Curl::Answer& answer);
/// Whether the failure may pass soon: the service was busy (429, 503), or the connection failed, broke or
/// timed out. An unknown name, an untrusted certificate or an address that the download service has closed
/// for a while does not pass soon.
ORVHOST_EXPORT bool isPassing(const Curl::Answer& answer);
/// The same for a failed download.
/// @param errorNumber as set by `Curl::download_to_location`
ORVHOST_EXPORT bool isPassing(const Curl::Answer& answer, int errorNumber);

} // namespace OrvHost::ServiceAnswer
