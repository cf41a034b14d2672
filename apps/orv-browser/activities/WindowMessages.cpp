#include "apps/orv-browser/activities/WindowMessages.h"

#include <utility>

WindowMessages::WindowMessages() : mFormer(error::MessagingSystem::install(this)) {}

WindowMessages::~WindowMessages()
{
    error::MessagingSystem::install(mFormer);
}

void WindowMessages::notify(const char* /*sourceFile*/, int /*line*/, const error::Trait& trait,
                            int messageNumber, const marl::unicode::String& text1,
                            const marl::unicode::String& text2, const marl::unicode::String& text3)
{
    const QString text =
        QString::fromStdString(messageText(messageNumber, text1, text2, text3).toUTF8String());
    {
        const ThreadLockGuard<ThreadMutex> lock(mMutex);
        const bool isOnce = trait.kind() == error::Trait::Kind::InformationOnce;
        if (isOnce && !mShownOnce.insert(messageNumber).second)
            return;
        mWaiting.push_back({trait.kind(), text});
    }
    QMetaObject::invokeMethod(this, "arrived", Qt::QueuedConnection);
}

std::vector<WindowMessages::Message> WindowMessages::take()
{
    const ThreadLockGuard<ThreadMutex> lock(mMutex);
    return std::exchange(mWaiting, {});
}
