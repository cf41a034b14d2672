// The main function of the window's tests: an application that can measure its events, then all tests.
#include <QApplication>
#include <QElapsedTimer>

#include <gmock/gmock.h>

#include "apps/orv-browser/Translations.h"
#include "tests/orv-browser/EventWatch.h"

namespace {

class WatchedApplication : public QApplication
{
public:
    using QApplication::QApplication;

    bool notify(QObject* receiver, QEvent* event) override
    {
        if (mDepth > 0 || !test::EventWatch::current())
            return QApplication::notify(receiver, event);
        const std::string name =
            std::string(receiver->metaObject()->className()) + ", event " + std::to_string(event->type());
        ++mDepth;
        QElapsedTimer timer;
        timer.start();
        const bool result = QApplication::notify(receiver, event);
        --mDepth;
        if (auto* watch = test::EventWatch::current())
            watch->note(timer.elapsed(), name);
        return result;
    }

private:
    int mDepth = 0;
};

} // namespace

int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    testing::InitGoogleMock(&argc, argv);
    WatchedApplication application(argc, argv);
    Translations::install(application);
    return RUN_ALL_TESTS();
}
