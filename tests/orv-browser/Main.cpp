// The main function of the window's tests. Its application object can measure how long events take.
#include <gmock/gmock.h>

#include "apps/orv-browser/Translations.h"
#include "tests/orv-browser/WatchedApplication.h"

namespace {

/// The way to the network that the tests' machine has must not go before what a test sets.
void leaveMachine()
{
    qputenv("DBUS_SYSTEM_BUS_ADDRESS", "unix:path=/nonexistent");
    for (const char* variable : {"http_proxy", "https_proxy", "HTTPS_PROXY", "all_proxy", "ALL_PROXY",
                                 "SSL_CERT_FILE", "SSL_CERT_DIR"})
        qunsetenv(variable);
}

} // namespace

int main(int argc, char** argv)
{
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen"); // "xcb" drives a real window
    leaveMachine();
    testing::InitGoogleMock(&argc, argv);
    test::WatchedApplication application(argc, argv);
    Translations::install(application);
    return RUN_ALL_TESTS();
}
