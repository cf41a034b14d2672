#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "OrvHost/OrvHostExport.h"
#include "OrvLibrary/host/Curl.h"

/// Reads requests to the catalog web service and its answers, as the library reads them. Functions may be
/// called from any thread.
namespace OrvHost::ServiceAnswer {

/// The version tag that a request tells the service ("If-None-Match"), without its quotes.
ORVHOST_EXPORT std::string sentTag(const std::vector<std::string>& headerLines);

/// `Content-Length`, where it is a number.
ORVHOST_EXPORT std::optional<std::int64_t> length(const std::string& headerText);
/// `ETag` without its quotes and its mark of weakness.
ORVHOST_EXPORT std::optional<std::string> tag(const std::string& headerText);
/// The value to resume a download with: the strong `ETag` in its quotes, or else `Last-Modified`; empty when
/// the answer has neither.
ORVHOST_EXPORT std::string validator(const std::string& headerText);
/// How long the service asks to be left alone (`Retry-After`, in seconds or as a date).
ORVHOST_EXPORT std::optional<std::chrono::seconds> retryAfter(const std::string& headerText);

/// Whether an answer of status 200 is a web page by its type.
ORVHOST_EXPORT bool isWebPage(const Curl::Answer& answer);
/// Whether a text that should be a content index is markup: it begins with "<".
ORVHOST_EXPORT bool isMarkup(const std::string& text);

/// Whether the download service did not make the request, because the address had not answered a few times.
ORVHOST_EXPORT bool isLeftAlone(const Curl::Answer& answer);
/// Whether it makes sense to ask again soon: the service was busy (429, 503), or the connection broke, timed
/// out or was refused. A name that is not found, a certificate that is not trusted, and an address that the
/// download service leaves alone for a while stay as they are.
ORVHOST_EXPORT bool isPassing(const Curl::Answer& answer);
/// The same for a download that failed.
/// @param errorNumber as `Curl::download_to_location` sets it
ORVHOST_EXPORT bool isPassing(const Curl::Answer& answer, int errorNumber);

} // namespace OrvHost::ServiceAnswer
