#pragma once

#include <cstdint>
#include <string>

#include <QDateTime>

#include "OrvHost/update/CheckOutcome.h"
#include "OrvHost/update/UpdateOutcome.h"

namespace OrvHost {

/// Adds a run to the list of runs and stores its result for the next `check`. If writing fails, the run goes
/// on, and one note says so. One object belongs to one run and one thread.
class RunJournal
{
public:
    explicit RunJournal(const fileString& root) : mRoot(root) {}

    /// @param kind "update" or "check"
    void begin(const char* kind, const QDateTime& start);
    void endUpdate(const UpdateOutcome& outcome, const CheckOutcome& found);
    void endCheck(const ServiceReport& service, const CheckOutcome& found, bool isCancelled);

    /// Names the file that could not be written, for people; empty if there is none.
    const std::string& problem() const { return mProblem; }

private:
    template <class Work>
    void attempt(Work work);
    void end(const char* outcome, const CheckOutcome& found, const ServiceReport& service,
             const std::vector<UpdateOutcome::Failure>& failed);

    fileString mRoot;
    std::int64_t mNumber = 0; ///< 0 if the run has no record
    std::string mProblem;
};

} // namespace OrvHost
