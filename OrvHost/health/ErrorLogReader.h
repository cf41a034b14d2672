#pragma once

#include <string>
#include <vector>

#include "OrvHost/OrvHostExport.h"
#include "OrvLibrary/host/fileString.h"

namespace OrvHost {

/// One entry of the error log.
struct ErrorLogEntry
{
    std::string time;
    std::string thread;
    std::string message; ///< without the line break at its end; may have several lines
};

/// Reads "errors.log". The library only writes it. If a killed process left an incomplete entry, the part
/// that exists counts as an entry.
class ORVHOST_EXPORT ErrorLogReader
{
public:
    /// The entries in the text of a log, oldest first.
    static std::vector<ErrorLogEntry> parse(const std::string& text);
    /// The entries in a log file; empty if there is no file.
    /// @throws std::runtime_error if the file exists and cannot be read, with its path and the system's
    /// message
    static std::vector<ErrorLogEntry> read(const fileString& path);
    /// The same, but empty if the file cannot be read, for callers that can do without it.
    static std::vector<ErrorLogEntry> readIfPossible(const fileString& path);
};

} // namespace OrvHost
