#pragma once

#include <string>

#include <boost/date_time/posix_time/posix_time_types.hpp>

#include "OrvLibrary/OrvLibraryExport.h"

namespace Library {

/// The current time in UTC, to the microsecond.
ORVLIBRARY_EXPORT boost::posix_time::ptime getTimeNow();
/// The text for a time in data files, such as "20261121T033512.250000"; "not-a-date-time" for none.
ORVLIBRARY_EXPORT std::string toString(const boost::posix_time::ptime& time);
/// The inverse of `toString`. Any other text gives not-a-date-time. Throws nothing.
ORVLIBRARY_EXPORT boost::posix_time::ptime fromString(const std::string& text);
/// The current time for the error log, in UTC: "2026-11-21 03:35:12".
ORVLIBRARY_EXPORT std::string getTimeNowString();

} // namespace Library
