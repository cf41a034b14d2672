#pragma once

#include <set>
#include <vector>

#include <QObject>
#include <QString>

#include "OrvLibrary/host/MessagingSystem.h"
#include "OrvLibrary/host/ThreadMutex.h"

/// The numbered messages of the library for a program with a window: kept until the window takes them.
/// Whoever sends one goes on at once, on any thread. Installed for the life of the object, which outlives the
/// window; the former message system is put back at its end.
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

    /// The messages that nobody has taken yet, in order of arrival.
    std::vector<Message> take();

Q_SIGNALS:
    /// There are messages to take; sent on the interface thread.
    void arrived();

private:
    error::MessagingSystem* mFormer;
    ThreadMutex mMutex;
    std::set<int> mShownOnce; ///< informations that were sent in this run; under mMutex, as what follows
    std::vector<Message> mWaiting;
};
