#pragma once

#include <cstdint>
#include <map>
#include <string>

#include <QDateTime>

#include "OrvHost/OrvHostExport.h"
#include "OrvLibrary/host/fileString.h"

namespace OrvHost {

/// The results of the last updates: when one was last tried, when one last went through without an error, and
/// the last answer of the service for each catalog. Kept in "update-history.json" below the root, for
/// `status`. One object belongs to one thread.
class ORVHOST_EXPORT CheckHistory
{
public:
    /// The last answer of the service for a catalog.
    struct Answer
    {
        std::int64_t status = 0; ///< HTTP status; 0 when there was no answer
        QDateTime time;          ///< UTC
        std::string reason;      ///< why the catalog could not be brought up to date; empty when it could
    };

    /// Reads the history; a file that is missing or not understood is an empty one.
    explicit CheckHistory(const fileString& root);

    /// When the last update ended, UTC; invalid when there was none.
    const QDateTime& lastAttempt() const { return mLastAttempt; }
    /// Why the last attempt failed as a whole; empty when it did not.
    const std::string& lastError() const { return mLastError; }
    /// UTC; invalid when no update ever went well.
    const QDateTime& lastGoodCheck() const { return mLastGoodCheck; }
    /// By the name under which the service was asked.
    const std::map<std::string, Answer>& answers() const { return mAnswers; }

    void noteAttempt(const QDateTime& time, const std::string& error)
    {
        mLastAttempt = time;
        mLastError = error;
    }
    void noteGoodCheck(const QDateTime& time) { mLastGoodCheck = time; }
    void noteAnswer(const std::string& catalog, std::int64_t status, const QDateTime& time,
                    const std::string& reason = {})
    {
        mAnswers[catalog] = {status, time, reason};
    }
    /// Drops what an update that asked for everything did not ask for any more.
    void forgetAnswer(const std::string& catalog) { mAnswers.erase(catalog); }
    /// @throws std::runtime_error with the path and the system's text; the file is then as it was
    void save() const;

private:
    fileString mPath;
    QDateTime mLastAttempt;
    std::string mLastError;
    QDateTime mLastGoodCheck;
    std::map<std::string, Answer> mAnswers;
};

} // namespace OrvHost
