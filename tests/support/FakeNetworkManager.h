#pragma once

#include <memory>
#include <string>

#include <QProcess>
#include <QThread>

#include "tests/support/TempFolder.h"

namespace test {

/// A private message bus: a `dbus-daemon` that runs until the destructor.
class MessageBus
{
public:
    MessageBus();
    ~MessageBus();
    MessageBus(const MessageBus&) = delete;
    MessageBus& operator=(const MessageBus&) = delete;

    /// Value for the variable `DBUS_SYSTEM_BUS_ADDRESS`.
    const std::string& address() const { return mAddress; }
    /// Whether a client made the bus start a network manager.
    bool hasStartedAManager() const;

private:
    TempFolder mFolder;
    QProcess mDaemon;
    std::string mAddress;
};

/// Listens at the address of a bus. Clients can connect, but get no reply.
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

/// A NetworkManager on a bus that has only the property "Metered". It replies on its own thread.
class FakeNetworkManager
{
public:
    /// Values of the property "Metered".
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
    /// From now on accepts requests and does not reply.
    void fallSilent();
    /// How often the property was requested.
    int asked() const;

private:
    class Manager;

    std::unique_ptr<Manager> mManager;
    QThread mThread;
};

} // namespace test
