#pragma once

#include "OrvLibrary/host/ProgressSubject.h"
#include "apps/orv-library/console/ProgressReporter.h"

/// The progress object of imports, shown by a `ProgressReporter`. A signal (`Interrupt`) counts as a cancel.
/// A label without a step is the name of the work, such as "reading"; a label with a step is the name of a
/// file. The scale counts bytes.
class ConsoleProgress : public ProgressSubject
{
public:
    /// @param reporter must outlive the object
    explicit ConsoleProgress(ProgressReporter& reporter) : mReporter(reporter) {}

    bool checkCancel(bool processEvents) override;
    void createSubProgress(std::uint64_t total) override;
    void increment(const marl::unicode::String& label1, const marl::unicode::String& label2) override;
    void updateLabels(const marl::unicode::String& label1, const marl::unicode::String& label2) override;
    void advanceBytes(std::uint64_t bytes) override;

private:
    ProgressReporter& mReporter;
};
