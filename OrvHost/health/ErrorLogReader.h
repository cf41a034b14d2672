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
    std::string message; ///< without the final line break; may hold several lines
};

/// Reads "errors.log" for people: the library itself never does. An entry that a killed process left
/// unfinished is an entry with what there is of it.
class ORVHOST_EXPORT ErrorLogReader
{
public:
    /// The entries of a log's text, oldest first.
    static std::vector<ErrorLogEntry> parse(const std::string& text);
    /// The entries of a log file; none when it does not exist.
    /// @throws std::runtime_error when it exists but cannot be read, with its path and the system's text
    static std::vector<ErrorLogEntry> read(const fileString& path);
    /// The same for one who can do without the log: none when it cannot be read, as where a folder has its
    /// name.
    static std::vector<ErrorLogEntry> readIfPossible(const fileString& path);
};

} // namespace OrvHost
