#pragma once

#include <functional>
#include <vector>

#include "tests/support/FaultReply.h"

namespace test {

/// A way in which a web service is broken or hostile.
struct Behaviour
{
    const char* name;
    std::function<FaultReply(const FaultReply& sound, const FaultRequest& request)> spoil;
    /// It sends other bytes as if they were the file, with the right tag; the transfer cannot tell.
    bool lies = false;
    /// The answer, or the rest of it, never comes.
    bool isSilent = false;
};

/// Everything that one answer may be spoilt by: its end, its length, its headers, redirects, lies.
std::vector<Behaviour> brokenServices();

} // namespace test
