#pragma once

#include <set>
#include <vector>

#include <QObject>
#include <QString>

#include "OrvLibrary/host/MessagingSystem.h"
#include "OrvLibrary/host/ThreadMutex.h"

/// Keeps the library's messages until the window shows them. The sender goes on at once, on any thread.
/// Installed as long as the object lives, which must outlive the window; the former message system is
/// restored then.
class WindowMessages : public QObject, public error::MessagingSystem
{
    Q_OBJECT

public:
    struct Message
    {
        error::Trait::Kind kind;
        QString text;
    };

    WindowMessages();
    ~WindowMessages() override;

    void notify(const char* sourceFile, int line, const error::Trait& trait, int messageNumber,
                const marl::unicode::String& text1, const marl::unicode::String& text2,
                const marl::unicode::String& text3) override;

    /// All messages not yet taken, in order of arrival.
    std::vector<Message> take();

Q_SIGNALS:
    /// There are messages to take. Sent on the interface thread.
    void arrived();

private:
    error::MessagingSystem* mFormer;
    ThreadMutex mMutex;
    std::set<int> mShownOnce; ///< messages already sent in this run; guarded by mMutex, like those below
    std::vector<Message> mWaiting;
};
