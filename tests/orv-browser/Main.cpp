// The main function of the window's tests: an application that can measure its events, then all tests.
#include <gmock/gmock.h>

#include "apps/orv-browser/Translations.h"
#include "tests/orv-browser/WatchedApplication.h"

int main(int argc, char** argv)
{
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");                  // "xcb" drives a real window
    qputenv("DBUS_SYSTEM_BUS_ADDRESS", "unix:path=/nonexistent"); // the machine's network is no matter
    testing::InitGoogleMock(&argc, argv);
    test::WatchedApplication application(argc, argv);
    Translations::install(application);
    return RUN_ALL_TESTS();
}
