// The name of an outcome, and its failures in words.
#include <algorithm>

#include "OrvHost/update/UpdateOutcome.h"

namespace OrvHost {

namespace {

constexpr std::size_t kMostNamed = 5;

} // namespace

const char* UpdateOutcome::name() const
{
    const char* const names[] = {"updated", "current", "incomplete", "failed", "cancelled", "waiting"};
    return names[static_cast<int>(kind)];
}

std::string UpdateOutcome::failedText() const
{
    std::string text;
    for (std::size_t index = 0; index < std::min(failed.size(), kMostNamed); ++index) {
        const Failure& failure = failed[index];
        text +=
            (index == 0 ? "" : "; ") + failure.catalog.value_or("the content index") + ": " + failure.reason;
    }
    if (failed.size() > kMostNamed)
        text += "; and " + std::to_string(failed.size() - kMostNamed) + " more";
    return text;
}

std::string UpdateOutcome::reasonOf(const CatalogReport& catalog) const
{
    for (const Failure& failure : failed) {
        if (failure.catalog &&
            (*failure.catalog == catalog.asked || *failure.catalog == installedName(catalog.asked)))
            return failure.reason;
    }
    return {};
}

std::string installedName(const std::string& asked)
{
    const std::string packed = ".orvlibz";
    const bool isPacked = asked.size() > packed.size() &&
                          asked.compare(asked.size() - packed.size(), packed.size(), packed) == 0;
    return isPacked ? asked.substr(0, asked.size() - 1) : asked;
}

} // namespace OrvHost
