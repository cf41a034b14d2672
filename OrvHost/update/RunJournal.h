#pragma once

#include <cstdint>
#include <string>

#include <QDateTime>

#include "OrvHost/update/CheckOutcome.h"
#include "OrvHost/update/UpdateOutcome.h"

namespace OrvHost {

/// Writes what one run did into the list of runs and keeps what it found for the next `check`. A failure to
/// write ends no run: it is told once, as a note. One object belongs to one run and one thread.
class RunJournal
{
public:
    explicit RunJournal(const fileString& root) : mRoot(root) {}

    /// @param kind "update" or "check"
    void begin(const char* kind, const QDateTime& start);
    void endUpdate(const UpdateOutcome& outcome, const CheckOutcome& found);
    void endCheck(const ServiceReport& service, const CheckOutcome& found, bool isCancelled);

    /// Names the file that could not be written, for people; empty when all were written.
    const std::string& problem() const { return mProblem; }

private:
    template <class Work>
    void attempt(Work work);
    void end(const char* outcome, const CheckOutcome& found, const ServiceReport& service,
             const std::vector<UpdateOutcome::Failure>& failed);

    fileString mRoot;
    std::int64_t mNumber = 0; ///< 0: the run has no record
    std::string mProblem;
};

} // namespace OrvHost
