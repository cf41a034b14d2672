#pragma once

#include <memory>
#include <string>

#include "OrvLibrary/host/ProgressSubject.h"

namespace OrvHost {

/// The progress object that an import passes to the library's functions. It shows the steps of the import as
/// labels and passes on members, bytes and the cancel question. It drops the labels of the library's
/// functions, which would appear between the steps.
class ImportSteps : public ProgressSubject
{
public:
    /// @param target must not be null
    explicit ImportSteps(std::shared_ptr<ProgressSubject> target);

    /// Begins a step such as "reading".
    void begin(const std::string& step);
    /// @throws std::runtime_error "cancelled" if the user has cancelled
    void throwIfCancelled();

    bool checkCancel(bool processEvents) override;
    void createSubProgress(std::uint64_t total) override;
    void increment(const marl::unicode::String& label1, const marl::unicode::String& label2) override;
    void updateLabels(const marl::unicode::String& label1, const marl::unicode::String& label2) override;
    void advanceBytes(std::uint64_t bytes) override;

private:
    std::shared_ptr<ProgressSubject> mTarget;
};

} // namespace OrvHost
