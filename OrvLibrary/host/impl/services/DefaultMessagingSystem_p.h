#pragma once

#include <set>

#include "OrvLibrary/host/MessagingSystem.h"
#include "OrvLibrary/host/ThreadMutex.h"

namespace error {

/// Writes every message to the logging category "orv.library".
class DefaultMessagingSystem : public MessagingSystem
{
public:
    void notify(const char* sourceFile, int line, const Trait& trait, int messageNumber,
                const marl::unicode::String& text1, const marl::unicode::String& text2,
                const marl::unicode::String& text3) override;

private:
    bool isFirst(int messageNumber);

    ThreadMutex mMutex;
    std::set<int> mShownOnce; ///< messages already shown in this run; guarded by mMutex
};

} // namespace error
