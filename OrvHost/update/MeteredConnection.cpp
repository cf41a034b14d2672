#include "OrvHost/update/MeteredConnection.h"

#include <atomic>

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusReply>
#include <QDBusVariant>

namespace OrvHost {

namespace {

/// Values of the property "Metered".
constexpr uint kYes = 1;
constexpr uint kGuessYes = 3;

QString busAddress()
{
    const QString given = qEnvironmentVariable("DBUS_SYSTEM_BUS_ADDRESS");
    return given.isEmpty() ? QStringLiteral("unix:path=/var/run/dbus/system_bus_socket") : given;
}

/// A connection of its own to the bus. It is opened like one to a peer, and greets the bus with a call that
/// has a bound: Qt's own greeting waits 25 s for a bus that is silent.
class BusConnection
{
public:
    explicit BusConnection(std::chrono::milliseconds patience)
        : mPatience(static_cast<int>(patience.count())),
          mName(QStringLiteral("orv-metered-%1").arg(++sCount)),
          mConnection(QDBusConnection::connectToPeer(busAddress(), mName))
    {
        mIsReady = mConnection.isConnected() &&
                   call(QDBusMessage::createMethodCall(
                            QStringLiteral("org.freedesktop.DBus"), QStringLiteral("/org/freedesktop/DBus"),
                            QStringLiteral("org.freedesktop.DBus"), QStringLiteral("Hello")))
                           .type() == QDBusMessage::ReplyMessage;
    }
    ~BusConnection() { QDBusConnection::disconnectFromPeer(mName); }
    BusConnection(const BusConnection&) = delete;
    BusConnection& operator=(const BusConnection&) = delete;

    bool isReady() const { return mIsReady; }
    QDBusMessage call(const QDBusMessage& message) const
    {
        return mConnection.call(message, QDBus::Block, mPatience);
    }

private:
    static std::atomic<int> sCount; ///< connections are told apart by name

    const int mPatience;
    const QString mName;
    QDBusConnection mConnection;
    bool mIsReady = false;
};

std::atomic<int> BusConnection::sCount{0};

} // namespace

bool MeteredConnection::isMetered(std::chrono::milliseconds patience)
{
    const BusConnection bus(patience);
    if (!bus.isReady())
        return false;
    const QString manager = QStringLiteral("org.freedesktop.NetworkManager");
    QDBusMessage question = QDBusMessage::createMethodCall(
        manager, QStringLiteral("/org/freedesktop/NetworkManager"),
        QStringLiteral("org.freedesktop.DBus.Properties"), QStringLiteral("Get"));
    question.setArguments({manager, QStringLiteral("Metered")});
    question.setAutoStartService(false); // one that does not run does not manage the network
    const QDBusReply<QDBusVariant> answer = bus.call(question);
    if (!answer.isValid())
        return false;
    const uint metered = answer.value().variant().toUInt();
    return metered == kYes || metered == kGuessYes;
}

} // namespace OrvHost
