#include "tests/support/FakeNetworkManager.h"

#include <atomic>
#include <cstring>

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVariant>
#include <QDBusVirtualObject>

#include <gtest/gtest.h>

namespace test {

namespace {

constexpr int kTimeoutMilliseconds = 30000;
const QString kService = QStringLiteral("org.freedesktop.NetworkManager");
const QString kPath = QStringLiteral("/org/freedesktop/NetworkManager");

const char* const kConfiguration =
    R"(<!DOCTYPE busconfig PUBLIC "-//freedesktop//DTD D-Bus Bus Configuration 1.0//EN"
 "http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd">
<busconfig>
  <type>session</type>
  <listen>unix:path=%1/bus</listen>
  <servicedir>%1</servicedir>
  <auth>EXTERNAL</auth>
  <policy context="default">
    <allow user="*"/>
    <allow own="*"/>
    <allow send_destination="*"/>
    <allow receive_sender="*"/>
  </policy>
</busconfig>
)";
/// Tells the bus how to start a network manager for a client that wants one. This one only leaves a file.
const char* const kActivation = R"([D-BUS Service]
Name=%1
Exec=/usr/bin/touch %2/started
)";

} // namespace

MessageBus::MessageBus() : mAddress("unix:path=" + mFolder.path() + "/bus")
{
    const QString folder = QString::fromStdString(mFolder.path());
    mFolder.write("bus.conf", QString(kConfiguration).arg(folder).toStdString());
    mFolder.write("manager.service", QString(kActivation).arg(kService, folder).toStdString());
    mDaemon.start("dbus-daemon",
                  {"--nofork", "--nopidfile", "--print-address", "--config-file=" + folder + "/bus.conf"});
    while (!mDaemon.canReadLine() && mDaemon.waitForReadyRead(kTimeoutMilliseconds)) {
    }
    EXPECT_TRUE(mDaemon.canReadLine()) << mDaemon.readAllStandardError().toStdString();
}

bool MessageBus::hasStartedAManager() const
{
    return mFolder.file("started").pathExists();
}

MessageBus::~MessageBus()
{
    mDaemon.kill();
    mDaemon.waitForFinished(kTimeoutMilliseconds);
}

SilentBus::SilentBus()
    : mAddress("unix:path=" + mFolder.path() + "/bus"),
      mSocket(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0))
{
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    std::strncpy(address.sun_path, (mFolder.path() + "/bus").c_str(), sizeof address.sun_path - 1);
    EXPECT_EQ(0, bind(mSocket, reinterpret_cast<const sockaddr*>(&address), sizeof address));
    EXPECT_EQ(0, listen(mSocket, 8));
}

SilentBus::~SilentBus()
{
    close(mSocket);
}

class FakeNetworkManager::Manager : public QDBusVirtualObject
{
public:
    explicit Manager(unsigned int metered) : mMetered(metered) {}

    QString introspect(const QString&) const override { return {}; }
    bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override
    {
        if (message.member() != QLatin1String("Get") ||
            message.arguments() != QVariantList{kService, QStringLiteral("Metered")})
            return false;
        ++mAsked;
        if (!mIsSilent)
            connection.send(message.createReply(QVariant::fromValue(QDBusVariant(mMetered.load()))));
        return true;
    }

    std::atomic<unsigned int> mMetered;
    std::atomic<bool> mIsSilent{false};
    std::atomic<int> mAsked{0};
};

FakeNetworkManager::FakeNetworkManager(const MessageBus& bus, unsigned int metered)
    : mManager(std::make_unique<Manager>(metered))
{
    mManager->moveToThread(&mThread);
    mThread.start();
    QDBusConnection connection =
        QDBusConnection::connectToBus(QString::fromStdString(bus.address()), kService);
    EXPECT_TRUE(connection.registerVirtualObject(kPath, mManager.get()));
    EXPECT_TRUE(connection.registerService(kService));
}

FakeNetworkManager::~FakeNetworkManager()
{
    // The connection is closed later, on a thread of Qt. It must not find the manager then, which is gone.
    QDBusConnection(kService).unregisterObject(kPath);
    QDBusConnection::disconnectFromBus(kService);
    mThread.quit();
    mThread.wait();
}

void FakeNetworkManager::say(unsigned int metered)
{
    mManager->mMetered = metered;
}

void FakeNetworkManager::fallSilent()
{
    mManager->mIsSilent = true;
}

int FakeNetworkManager::asked() const
{
    return mManager->mAsked;
}

} // namespace test
