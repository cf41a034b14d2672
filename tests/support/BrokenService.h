#pragma once

#include <functional>
#include <vector>

#include "tests/support/FaultReply.h"

namespace test {

/// One way in which a web service can be broken or hostile.
struct Behaviour
{
    const char* name;
    std::function<FaultReply(const FaultReply& sound, const FaultRequest& request)> spoil;
    /// The service sends other bytes as if they were the file, with the file's entity tag. The transfer
    /// cannot detect this.
    bool lies = false;
    /// The response, or the rest of it, never arrives.
    bool isSilent = false;
};

/// One login page is behind a redirect to this address. The service must serve `loginPage` there.
extern const char* const kLoginPath;
FaultReply loginPage();
/// Replies of a network that requires a login: the page itself, with or without its content type, a redirect
/// to it, or an error status with the page.
std::vector<Behaviour> loginPages();

/// Every way to spoil a single response: cut off, silent, wrong length, bad headers, redirects, false
/// content.
std::vector<Behaviour> brokenServices();

} // namespace test
