#pragma once

#include <cstdint>
#include <map>
#include <string>

#include <QDateTime>

#include "OrvHost/OrvHostExport.h"
#include "OrvLibrary/host/fileString.h"

namespace OrvHost {

/// The results of the latest updates: the time of the last one, the time of the last one without an error,
/// and the service's last answer for each catalog. Stored in "update-history.json" below the root, for
/// `status`. One object belongs to one thread.
class ORVHOST_EXPORT CheckHistory
{
public:
    /// The service's last answer for a catalog.
    struct Answer
    {
        std::int64_t status = 0; ///< HTTP status; 0 if there was no answer
        QDateTime time;          ///< UTC
        std::string reason;      ///< why the catalog could not be updated; empty if it could
    };

    /// Reads the history. If the file is missing or not valid, the history is empty.
    explicit CheckHistory(const fileString& root);

    /// When the last update ended, in UTC; invalid if there was none.
    const QDateTime& lastAttempt() const { return mLastAttempt; }
    /// Why the last update failed as a whole; empty if it did not.
    const std::string& lastError() const { return mLastError; }
    /// In UTC; invalid if no update was ever successful.
    const QDateTime& lastGoodCheck() const { return mLastGoodCheck; }
    /// By the name used in the request.
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
    /// Removes a catalog that a complete update did not ask for any more.
    void forgetAnswer(const std::string& catalog) { mAnswers.erase(catalog); }
    /// @throws std::runtime_error with the path and the system's message; the file is then unchanged
    void save() const;

private:
    fileString mPath;
    QDateTime mLastAttempt;
    std::string mLastError;
    QDateTime mLastGoodCheck;
    std::map<std::string, Answer> mAnswers;
};

} // namespace OrvHost
