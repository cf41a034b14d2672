#include "OrvHost/ConsoleMessages.h"

#include <iostream>

#include "OrvHost/AppHost.h"

namespace OrvHost {

void ConsoleMessages::notify(const char* /*sourceFile*/, int /*line*/, const error::Trait& trait,
                             int messageNumber, const marl::unicode::String& text1,
                             const marl::unicode::String& text2, const marl::unicode::String& text3)
{
    const std::string text = messageText(messageNumber, text1, text2, text3).toUTF8String();
    ThreadLockGuard<ThreadMutex> lock(mMutex);
    const bool once = trait.kind() == error::Trait::Kind::InformationOnce;
    if (once && !mShownOnce.insert(messageNumber).second)
        return;
    std::cerr << AppHost::kName << ": " << text << std::endl;
    mShown.push_back(text);
}

std::vector<std::string> ConsoleMessages::shown() const
{
    ThreadLockGuard<ThreadMutex> lock(mMutex);
    return mShown;
}

} // namespace OrvHost
