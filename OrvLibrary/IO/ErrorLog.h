#pragma once

#include <sstream>
#include <string>

#include <boost/uuid/uuid.hpp>

#include "OrvLibrary/OrvLibraryExport.h"
#include "OrvLibrary/host/ThreadMutex.h"
#include "OrvLibrary/host/UnicodeString.h"
#include "OrvLibrary/host/fileString.h"

namespace Library {

/// One entry of the log "errors.log" in the user library database folder. The log is for support staff. An
/// entry collects text with `operator<<`. The destructor appends it to the file, unless it is empty. No
/// failure of the log reaches the caller.
///
/// Any thread may log. One object belongs to one thread.
class ORVLIBRARY_EXPORT ErrorLog
{
public:
    ErrorLog();
    /// Removes an old log (see `clear`), then appends the entry in one piece. Never throws.
    ~ErrorLog();
    ErrorLog(const ErrorLog&) = delete;
    ErrorLog& operator=(const ErrorLog&) = delete;

    /// Each appends only its argument: no separator and no line break. A null text appends nothing.
    ErrorLog& operator<<(const char* text);
    ErrorLog& operator<<(const std::string& text);
    ErrorLog& operator<<(const long long& number);
    ErrorLog& operator<<(const unsigned long& number);
    ErrorLog& operator<<(const marl::unicode::String& text);
    ErrorLog& operator<<(const fileString& path);
    ErrorLog& operator<<(const boost::uuids::uuid& id);

    /// The path of the log. It is determined for each call, because the host's folders may change.
    static fileString file();
    /// Removes the log if it was last written more than seven days ago. Its size has no other limit.
    static void clear();

private:
    static fileString getLogFile();
    void write();

    std::ostringstream mText;

    static ThreadMutex mMutex; ///< held whenever the file is read or changed
};

} // namespace Library
