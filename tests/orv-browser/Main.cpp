// The main function of the window's tests. Its application object can measure how long events take.
#include <gmock/gmock.h>

#include "apps/orv-browser/Translations.h"
#include "tests/orv-browser/WatchedApplication.h"

int main(int argc, char** argv)
{
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");                  // "xcb" uses a real screen
    qputenv("DBUS_SYSTEM_BUS_ADDRESS", "unix:path=/nonexistent"); // ignores the machine's network
    testing::InitGoogleMock(&argc, argv);
    test::WatchedApplication application(argc, argv);
    Translations::install(application);
    return RUN_ALL_TESTS();
}
