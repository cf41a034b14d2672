// The main function of every test program: a Qt application without a screen, then all tests. With
// ORV_TEST_GROUPING in the environment they run in a process whose global locale groups digits.
#include <locale>

#include <QApplication>

#include <gmock/gmock.h>

#include "tests/support/GroupingLocale.h"

int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    qputenv("TZ", "UTC");
    qputenv("DBUS_SYSTEM_BUS_ADDRESS", "unix:path=/nonexistent"); // the machine's network is no matter
    if (qEnvironmentVariableIsSet("ORV_TEST_GROUPING"))
        std::locale::global(test::groupingLocale());
    testing::InitGoogleMock(&argc, argv);
    QApplication application(argc, argv);
    return RUN_ALL_TESTS();
}
