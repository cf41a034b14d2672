#include "OrvLibrary/IO/ErrorLog.h"

#include <ctime>
#include <locale>

#include <QThread>
#include <boost/uuid/uuid_io.hpp>

#include "OrvLibrary/IO/ErrorLog_p.h"
#include "OrvLibrary/host/FileUtils.h"
#include "OrvLibrary/host/LockingFStream.h"
#include "OrvLibrary/host/PathUtils.h"
#include "OrvLibrary/host/TimeUtils.h"

namespace Library {

namespace {

constexpr double kLongestSilenceSeconds = 604800.0; // seven days
constexpr char kFileName[] = "errors.log";

/// Whether the log exists and was last written more than seven days ago.
bool isStale(const fileString& log)
{
    return log.pathExists() &&
           std::difftime(std::time(nullptr), log.modificationTime()) > kLongestSilenceSeconds;
}

} // namespace

std::string threadText(const void* handle)
{
    if (!handle)
        return "{Not-any-thread}";
    std::ostringstream stream;
    stream.imbue(std::locale::classic());
    stream << handle;
    return stream.str();
}

ThreadMutex ErrorLog::mMutex;

ErrorLog::ErrorLog()
{
    mText.imbue(std::locale::classic());
}

ErrorLog::~ErrorLog()
{
    try {
        // Two steps, each with its own lock. Another entry may come in between, which does no harm.
        clear();
        write();
    } catch (...) {
        // There is no other place to report a failure of the log.
    }
}

ErrorLog& ErrorLog::operator<<(const char* text)
{
    if (text)
        mText << text;
    return *this;
}

ErrorLog& ErrorLog::operator<<(const std::string& text)
{
    mText << text;
    return *this;
}

ErrorLog& ErrorLog::operator<<(const long long& number)
{
    mText << number;
    return *this;
}

ErrorLog& ErrorLog::operator<<(const unsigned long& number)
{
    mText << number;
    return *this;
}

ErrorLog& ErrorLog::operator<<(const marl::unicode::String& text)
{
    return *this << fileString(text);
}

ErrorLog& ErrorLog::operator<<(const fileString& path)
{
    mText << path;
    return *this;
}

ErrorLog& ErrorLog::operator<<(const boost::uuids::uuid& id)
{
    mText << id;
    return *this;
}

fileString ErrorLog::file()
{
    return getLogFile();
}

void ErrorLog::clear()
{
    ThreadLockGuard<ThreadMutex> guard(mMutex);
    const fileString log = getLogFile();
    if (!isStale(log))
        return;
    // Another process may have replaced the log meanwhile, so check again under the lock of the writers. A
    // log that cannot be written has no writers.
    const LockingFStream locked(log, std::ios_base::app);
    if ((locked.is_open() || !FileUtils::canWriteFile(log)) && isStale(log))
        FileUtils::removePath(log, 0);
}

fileString ErrorLog::getLogFile()
{
    return PathUtils::getObject().getUserLibraryDatabasePath() / fileString(kFileName);
}

void ErrorLog::write()
{
    std::string text = mText.str();
    if (text.empty())
        return;
    if (text.back() != '\n')
        text += '\n';
    ThreadLockGuard<ThreadMutex> guard(mMutex);
    LockingFStream stream(getLogFile(), std::ios_base::app);
    stream << "---\n";
    stream << "Time: " << getTimeNowString() << "\n";
    stream << "Thread ID: " << threadText(QThread::currentThreadId()) << "\n";
    // Deliberate: the lines of the message are not indented, although "|" suggests it.
    // Kept by: ErrorLogTest.linesOfAMessageAreNotIndented
    stream << "Message: |\n" << text << "...\n";
    stream.close();
}

} // namespace Library
