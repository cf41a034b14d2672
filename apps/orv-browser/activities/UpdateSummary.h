#pragma once

#include <cstddef>
#include <set>
#include <string>

#include <QCoreApplication>
#include <QString>
#include <QStringList>

#include "OrvHost/update/UpdateOutcome.h"

/// How an update ended, for people. Lives on the interface thread.
class UpdateSummary
{
    Q_DECLARE_TR_FUNCTIONS(UpdateSummary)

public:
    /// @param outcome outlives the object
    /// @param notes what else is to be told
    /// @param isCancelled whether the user cancelled the run
    /// @param logEntriesBefore how many entries the error log had before the run
    UpdateSummary(const OrvHost::UpdateOutcome& outcome, const QStringList& notes, bool isCancelled,
                  std::size_t logEntriesBefore);

    bool isCancelled() const { return mIsCancelled; }
    /// Whether something failed that can be tried again.
    bool hasFailed() const { return mHasFailed; }
    /// Whether the log has more to say.
    bool hasProblems() const { return mHasFailed || !mNotes.isEmpty(); }

    /// The new catalogs and the failures, in sentences.
    QString text() const;
    /// The catalogs that wait because the connection is metered, in a sentence; empty if none does.
    QString waiting() const;
    /// In numbers, such as "16 catalogs, 42 new items, 3 gone"; empty when nothing came.
    /// @param isFirst whether this is the first content of all, which is not new to the window
    QString numbers(bool isFirst) const;
    /// The reason of a failure; if the run does not know it, the first line that the run added to the log.
    QString problem() const;

private:
    QString failures() const;

    const OrvHost::UpdateOutcome& mOutcome;
    std::set<std::string> mUpdated; ///< names of the catalogs that came
    QStringList mNotes;
    bool mIsCancelled;
    bool mHasFailed;
    std::size_t mLogEntriesBefore;
};
