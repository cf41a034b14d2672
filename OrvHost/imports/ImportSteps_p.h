#pragma once

#include <memory>
#include <string>

#include "OrvLibrary/host/ProgressSubject.h"

namespace OrvHost {

/// The progress object that an import hands to the library's operations. It tells the caller's progress
/// object the steps of the import as labels, and passes on members, bytes and the cancel question. The labels
/// that the library's operations set themselves are not passed on: they would come between the steps.
class ImportSteps : public ProgressSubject
{
public:
    /// @param target must not be null
    explicit ImportSteps(std::shared_ptr<ProgressSubject> target);

    /// A new step begins, such as "reading".
    void begin(const std::string& step);
    /// @throws std::runtime_error "cancelled" once the user asked for it
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
