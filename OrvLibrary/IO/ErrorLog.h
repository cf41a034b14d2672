#pragma once

#include <sstream>
#include <string>

#include <boost/uuid/uuid.hpp>

#include "OrvLibrary/OrvLibraryExport.h"
#include "OrvLibrary/host/ThreadMutex.h"
#include "OrvLibrary/host/UnicodeString.h"
#include "OrvLibrary/host/fileString.h"

namespace Library {

/// One entry of the diagnostic log "errors.log" in the user library database folder, for support staff. It
/// lives for a statement or a block, takes text through `operator<<`, and is appended to the file when it is
/// destroyed; an entry without text is not. Nothing that goes wrong with the log reaches the caller.
///
/// Any thread may log; one object belongs to one thread.
class ORVLIBRARY_EXPORT ErrorLog
{
public:
    ErrorLog();
    /// Drops a stale log (see `clear`), then appends the entry as one piece. Never throws.
    ~ErrorLog();
    ErrorLog(const ErrorLog&) = delete;
    ErrorLog& operator=(const ErrorLog&) = delete;

    /// Each appends the text form of its argument and nothing else: no separator, no line break. A null text
    /// appends nothing.
    ErrorLog& operator<<(const char* text);
    ErrorLog& operator<<(const std::string& text);
    ErrorLog& operator<<(const long long& number);
    ErrorLog& operator<<(const unsigned long& number);
    ErrorLog& operator<<(const marl::unicode::String& text);
    ErrorLog& operator<<(const fileString& path);
    ErrorLog& operator<<(const boost::uuids::uuid& id);

    /// The log's path. It is made anew each time, as the host's folders may change.
    static fileString file();
    /// Deletes a log that was last written more than seven days ago. There is no other limit to its size.
    static void clear();

private:
    static fileString getLogFile();
    void write();

    std::ostringstream mText;

    static ThreadMutex mMutex; ///< held over every look at or change of the file
};

} // namespace Library
