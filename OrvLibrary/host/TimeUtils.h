#pragma once

#include <string>

#include <boost/date_time/posix_time/posix_time_types.hpp>

#include "OrvLibrary/OrvLibraryExport.h"

namespace Library {

/// The current time, UTC, to the microsecond.
ORVLIBRARY_EXPORT boost::posix_time::ptime getTimeNow();
/// The text form of a time stamp in data files: "20261121T033512.250000", "not-a-date-time" for none.
ORVLIBRARY_EXPORT std::string toString(const boost::posix_time::ptime& time);
/// The inverse of `toString`. A text that is no time stamp gives not-a-date-time; nothing is thrown.
ORVLIBRARY_EXPORT boost::posix_time::ptime fromString(const std::string& text);
/// The current time as text for the error log: UTC, "2026-11-21 03:35:12".
ORVLIBRARY_EXPORT std::string getTimeNowString();

} // namespace Library
