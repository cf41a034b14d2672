#pragma once

#include <memory>
#include <string>

#include <QProcess>
#include <QThread>

#include "tests/support/TempFolder.h"

namespace test {

/// A message bus of the test's own, as the system has one: `dbus-daemon`, until the end of the block.
class MessageBus
{
public:
    MessageBus();
    ~MessageBus();
    MessageBus(const MessageBus&) = delete;
    MessageBus& operator=(const MessageBus&) = delete;

    /// For `DBUS_SYSTEM_BUS_ADDRESS`.
    const std::string& address() const { return mAddress; }

private:
    TempFolder mFolder;
    QProcess mDaemon;
    std::string mAddress;
};

/// Something that listens where a bus should be and never says a word.
class SilentBus
{
public:
    SilentBus();
    ~SilentBus();
    SilentBus(const SilentBus&) = delete;
    SilentBus& operator=(const SilentBus&) = delete;

    const std::string& address() const { return mAddress; }

private:
    TempFolder mFolder;
    std::string mAddress;
    int mSocket = -1;
};

/// NetworkManager on a bus, as far as its property "Metered" goes. It answers on a thread of its own.
class FakeNetworkManager
{
public:
    /// Values of the property.
    static constexpr unsigned int kUnknown = 0;
    static constexpr unsigned int kYes = 1;
    static constexpr unsigned int kNo = 2;
    static constexpr unsigned int kGuessYes = 3;
    static constexpr unsigned int kGuessNo = 4;

    FakeNetworkManager(const MessageBus& bus, unsigned int metered);
    ~FakeNetworkManager();
    FakeNetworkManager(const FakeNetworkManager&) = delete;
    FakeNetworkManager& operator=(const FakeNetworkManager&) = delete;

    void say(unsigned int metered);
    /// Takes questions from now on, and answers none.
    void fallSilent();
    /// How often it was asked for the property.
    int asked() const;

private:
    class Manager;

    std::unique_ptr<Manager> mManager;
    QThread mThread;
};

} // namespace test
