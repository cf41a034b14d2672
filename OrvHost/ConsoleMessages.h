#pragma once

#include <set>
#include <string>
#include <vector>

#include "OrvHost/OrvHostExport.h"
#include "OrvLibrary/host/MessagingSystem.h"
#include "OrvLibrary/host/ThreadMutex.h"

namespace OrvHost {

/// Shows the library's messages in a program without a window: each as one line on standard error, after the
/// program's name. May be called from any thread.
class ORVHOST_EXPORT ConsoleMessages : public error::MessagingSystem
{
public:
    void notify(const char* sourceFile, int line, const error::Trait& trait, int messageNumber,
                const marl::unicode::String& text1, const marl::unicode::String& text2,
                const marl::unicode::String& text3) override;

    /// All messages shown so far, in their order.
    std::vector<std::string> shown() const;

private:
    mutable ThreadMutex mMutex;
    std::set<int> mShownOnce;
    std::vector<std::string> mShown;
};

} // namespace OrvHost
