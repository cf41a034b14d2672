#pragma once

#include "OrvLibrary/host/ProgressSubject.h"
#include "apps/orv-library/console/ProgressReporter.h"

/// The progress object of the library's import operations, over the reporter; a signal (`Interrupt`) is the
/// user's cancel. Labels without a step forward are the steps of the work, such as "reading"; labels with one
/// name the file that is worked on. The scale counts bytes.
class ConsoleProgress : public ProgressSubject
{
public:
    /// @param reporter outlives the object
    explicit ConsoleProgress(ProgressReporter& reporter) : mReporter(reporter) {}

    bool checkCancel(bool processEvents) override;
    void createSubProgress(std::uint64_t total) override;
    void increment(const marl::unicode::String& label1, const marl::unicode::String& label2) override;
    void updateLabels(const marl::unicode::String& label1, const marl::unicode::String& label2) override;
    void advanceBytes(std::uint64_t bytes) override;

private:
    ProgressReporter& mReporter;
};
