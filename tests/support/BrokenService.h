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

/// The address that one form of a login page leads to; the service is to have `loginPage` there.
extern const char* const kLoginPath;
FaultReply loginPage();
/// What a login that is missing or has expired may put in place of an answer: the page itself, with its type
/// or without one, a redirect to it, or an error status with the page.
std::vector<Behaviour> loginPages();

/// Everything that one answer may be spoilt by: its end, its length, its headers, redirects, lies.
std::vector<Behaviour> brokenServices();

} // namespace test
