// The main function of every test program: it runs all tests in a Qt application without a screen. If
// ORV_TEST_GROUPING is set, the global locale of the process groups digits.
#include <locale>

#include <QApplication>

#include <gmock/gmock.h>

#include "tests/support/GroupingLocale.h"

int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    qputenv("TZ", "UTC");
    qputenv("DBUS_SYSTEM_BUS_ADDRESS", "unix:path=/nonexistent"); // ignores the machine's network
    if (qEnvironmentVariableIsSet("ORV_TEST_GROUPING"))
        std::locale::global(test::groupingLocale());
    testing::InitGoogleMock(&argc, argv);
    QApplication application(argc, argv);
    return RUN_ALL_TESTS();
}
