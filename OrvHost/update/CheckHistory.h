#pragma once

#include <cstdint>
#include <map>
#include <string>

#include <QDateTime>

#include "OrvHost/OrvHostExport.h"
#include "OrvLibrary/host/fileString.h"

namespace OrvHost {

/// What became of the last catalog checks: when one last went through without an error, and what the service
/// last answered for each catalog. Kept in "update-history.json" below the root, for `status`. One object
/// belongs to one thread.
class ORVHOST_EXPORT CheckHistory
{
public:
    struct Answer
    {
        std::int64_t status = 0; ///< HTTP status; 0 when there was no answer
        QDateTime time;          ///< UTC
    };

    /// Reads the history; a file that is missing or not understood is an empty one.
    explicit CheckHistory(const fileString& root);

    /// UTC; invalid when no check ever went well.
    const QDateTime& lastGoodCheck() const { return mLastGoodCheck; }
    /// By the name under which the service was asked.
    const std::map<std::string, Answer>& answers() const { return mAnswers; }

    void noteGoodCheck(const QDateTime& time) { mLastGoodCheck = time; }
    void noteAnswer(const std::string& catalog, std::int64_t status, const QDateTime& time)
    {
        mAnswers[catalog] = {status, time};
    }
    /// @throws std::runtime_error with the path and the system's text; the file is then as it was
    void save() const;

private:
    fileString mPath;
    QDateTime mLastGoodCheck;
    std::map<std::string, Answer> mAnswers;
};

} // namespace OrvHost
