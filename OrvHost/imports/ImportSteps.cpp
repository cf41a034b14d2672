#include "OrvHost/imports/ImportSteps_p.h"

#include <stdexcept>

namespace OrvHost {

ImportSteps::ImportSteps(std::shared_ptr<ProgressSubject> target) : mTarget(std::move(target)) {}

void ImportSteps::begin(const std::string& step)
{
    throwIfCancelled();
    mTarget->updateLabels(step, {});
}

void ImportSteps::throwIfCancelled()
{
    if (checkCancel(false))
        throw std::runtime_error("cancelled");
}

bool ImportSteps::checkCancel(bool processEvents)
{
    return mTarget->checkCancel(processEvents);
}

void ImportSteps::createSubProgress(std::uint64_t total)
{
    mTarget->createSubProgress(total);
}

void ImportSteps::increment(const marl::unicode::String& label1, const marl::unicode::String& label2)
{
    mTarget->increment(label1, label2);
}

void ImportSteps::updateLabels(const marl::unicode::String&, const marl::unicode::String&) {}

void ImportSteps::advanceBytes(std::uint64_t bytes)
{
    mTarget->advanceBytes(bytes);
}

} // namespace OrvHost
