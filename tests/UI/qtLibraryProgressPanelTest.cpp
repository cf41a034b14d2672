#include "OrvLibrary/UI/qtLibraryProgressPanel.h"

#include <limits>
#include <memory>
#include <thread>

#include <QAbstractButton>
#include <QApplication>
#include <QElapsedTimer>
#include <QHBoxLayout>
#include <QLabel>
#include <QPointer>
#include <QSignalSpy>
#include <QSplitter>
#include <QTest>
#include <QVBoxLayout>

#include <gtest/gtest.h>

#include "OrvLibrary/host/StringUtils.h"
#include "tests/UI/UiHost.h"

namespace {

constexpr std::size_t kBeyondInt = static_cast<std::size_t>(std::numeric_limits<int>::max()) + 1;

// Counts how often a widget is painted.
class Paintings : public QObject
{
public:
    explicit Paintings(QWidget& widget) { widget.installEventFilter(this); }
    int count() const { return mCount; }
    bool eventFilter(QObject* object, QEvent* event) override
    {
        mCount += event->type() == QEvent::Paint ? 1 : 0;
        return QObject::eventFilter(object, event);
    }

private:
    int mCount = 0;
};

// A browser window with the main splitter some levels down, and a panel in it.
class LibraryProgressPanelTest : public testing::Test
{
protected:
    LibraryProgressPanelTest()
    {
        host.setDisplayType(kProgressCount);
        auto* middle = new QWidget(&window);
        splitter = new QSplitter(Qt::Vertical, middle);
        splitter->setObjectName("libMainSplitter");
        splitter->addWidget(new QWidget);
        panel = LibraryProgressPanel::create(&window);
    }

    template <class... Arguments>
    void post(const char* slot, Arguments... arguments)
    {
        ASSERT_TRUE(QMetaObject::invokeMethod(panel, slot, Qt::QueuedConnection, arguments...)) << slot;
    }

    // Each step of a call is a separate posted event, so several rounds are needed.
    void settle()
    {
        for (int hop = 0; hop < 4; ++hop)
            QCoreApplication::sendPostedEvents();
    }

    ProgressGauge* gauge() const { return panel->findChild<ProgressGauge*>(); }
    ProgressText* text() const { return panel->findChild<ProgressText*>(); }
    QLabel* container() const { return static_cast<QLabel*>(caption()->parentWidget()); }
    QLabel* caption() const { return labelAt(0); }
    QLabel* figure() const { return labelAt(1); }

    test::UiHost host;
    QWidget window;
    QSplitter* splitter = nullptr;
    QPointer<LibraryProgressPanel> panel;

private:
    QLabel* labelAt(int place) const
    {
        auto* layout = panel->findChild<QHBoxLayout*>();
        return qobject_cast<QLabel*>(layout->itemAt(place)->widget());
    }
};

} // namespace

TEST_F(LibraryProgressPanelTest, isTheLastSectionOfTheMainSplitterAndStaysVisible)
{
    EXPECT_EQ(panel->parentWidget(), splitter);
    EXPECT_EQ(splitter->indexOf(panel), splitter->count() - 1);
    EXPECT_FALSE(splitter->isCollapsible(splitter->indexOf(panel)));
    EXPECT_FALSE(panel->isWindow());
}

TEST_F(LibraryProgressPanelTest, reservesTwoLinesAtAFixedHeight)
{
    EXPECT_EQ(caption()->text(), "\n");
    EXPECT_EQ(figure()->text(), "\n");
    EXPECT_EQ(panel->sizePolicy().horizontalPolicy(), QSizePolicy::Preferred);
    EXPECT_EQ(panel->sizePolicy().verticalPolicy(), QSizePolicy::Fixed);
    EXPECT_EQ(panel->minimumHeight(), LibraryProgressPanel(&window).sizeHint().height());
    EXPECT_EQ(panel->maximumHeight(), panel->minimumHeight());
    EXPECT_GE(panel->minimumHeight(), 2 * panel->fontMetrics().height());
}

TEST_F(LibraryProgressPanelTest, isLeftAloneWithoutTheSplitter)
{
    QWidget other;
    auto* misnamed = new QSplitter(&other);
    misnamed->setObjectName("otherSplitter");
    const LibraryProgressPanel* loose = LibraryProgressPanel::create(&other);
    EXPECT_EQ(loose->parentWidget(), &other);
    EXPECT_TRUE(loose->isWindow());
    EXPECT_FALSE(loose->isVisible());
    EXPECT_EQ(misnamed->count(), 0);
    EXPECT_NE(loose->sizePolicy().verticalPolicy(), QSizePolicy::Fixed);
    EXPECT_EQ(loose->findChild<QHBoxLayout*>()->itemAt(0)->widget()->property("text"), QVariant(""));
}

TEST_F(LibraryProgressPanelTest, showsItselfInTimeWithoutTheSplitter)
{
    QWidget other;
    LibraryProgressPanel* loose = LibraryProgressPanel::create(&other);
    EXPECT_EQ(loose->minimumDuration(), 4000); // milliseconds
    loose->setMinimumDuration(1);
    EXPECT_TRUE(QTest::qWaitFor([&] { return loose->isVisible(); }));
}

TEST_F(LibraryProgressPanelTest, standsInALayoutOfTheHostWithoutTheSplitter)
{
    QWidget other;
    auto* strip = new QWidget(&other);
    auto* layout = new QVBoxLayout(strip);
    LibraryProgressPanel* placed = LibraryProgressPanel::create(&other);
    layout->addWidget(placed);
    other.show();
    EXPECT_FALSE(placed->isWindow());
    EXPECT_EQ(placed->parentWidget(), strip);
    EXPECT_TRUE(placed->isVisible());
}

TEST_F(LibraryProgressPanelTest, canBeMadeWithoutAParent)
{
    const std::unique_ptr<LibraryProgressPanel> loose(LibraryProgressPanel::create(nullptr));
    EXPECT_EQ(loose->parentWidget(), nullptr);
}

TEST_F(LibraryProgressPanelTest, holdsGaugeAndLabelsAndNoCancelButton)
{
    EXPECT_EQ(panel->objectName(), "translated LibraryProgressPanel");
    EXPECT_EQ(container()->text(), "\n");
    EXPECT_EQ(container()->contentsMargins(), QMargins());
    EXPECT_EQ(container()->layout()->contentsMargins(), QMargins());
    EXPECT_EQ(container()->layout()->itemAt(0)->alignment(), Qt::AlignLeft);
    EXPECT_EQ(container()->layout()->itemAt(1)->alignment(), Qt::AlignRight);
    EXPECT_EQ(caption()->contentsMargins(), QMargins());
    EXPECT_EQ(figure()->contentsMargins(), QMargins());
    EXPECT_EQ(panel->findChild<QAbstractButton*>(), nullptr);
    EXPECT_EQ(panel->findChildren<QProgressBar*>(), QList<QProgressBar*>{gauge()});
    EXPECT_EQ(text()->parent(), panel);
    EXPECT_EQ(LibraryProgressPanel::label(), "ProgressPanels");
}

TEST_F(LibraryProgressPanelTest, valueAndRangeReachGaugeAndFigure)
{
    post("onSetRangeInGauge", Q_ARG(size_t, 1200));
    post("onSetValueInGauge", Q_ARG(size_t, 34));
    settle();
    EXPECT_EQ(gauge()->maximum(), 1200);
    EXPECT_EQ(gauge()->value(), 34);
    EXPECT_EQ(figure()->text(), "34 of 1,200");
    post("onSetRangeInGauge", Q_ARG(int, 60));
    post("onSetValueInGauge", Q_ARG(int, 5));
    settle();
    EXPECT_EQ(gauge()->maximum(), 60);
    EXPECT_EQ(gauge()->value(), 5);
    EXPECT_EQ(figure()->text(), "5 of 60");
}

TEST_F(LibraryProgressPanelTest, eachValueReachesTheTextTwiceAndEachRangeThrice)
{
    QSignalSpy texts(text(), &ProgressText::setRangeText);
    panel->onSetValueInGauge(7);
    settle();
    EXPECT_EQ(texts.count(), 2);
    texts.clear();
    panel->onSetRangeInGauge(9);
    settle();
    EXPECT_EQ(texts.count(), 3);
}

TEST_F(LibraryProgressPanelTest, textStaysCurrentWithoutAGauge)
{
    auto* plain = new QProgressBar;
    panel->setBar(plain);
    ASSERT_EQ(gauge(), nullptr);
    post("onSetRangeInGauge", Q_ARG(size_t, 9));
    post("onSetValueInGauge", Q_ARG(size_t, 4));
    post("onUpdateInGauge");
    settle();
    EXPECT_EQ(figure()->text(), "4 of 9");
}

TEST_F(LibraryProgressPanelTest, toleratesTheLossOfItsText)
{
    delete gauge();
    delete text();
    panel->onSetText("caption");
    panel->onSetUnits("KB");
    panel->onSetValueInGauge(4);
    panel->onSetRangeInGauge(4);
    settle();
    EXPECT_EQ(caption()->text(), "\n");
}

TEST_F(LibraryProgressPanelTest, eachTextPaintsTheContainerEvenIfItIsTheSameText)
{
    window.resize(600, 400);
    window.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&window));
    for (const char* setter : {"setProgressLabelText", "setProgressRangeText"}) {
        post(setter, Q_ARG(QString, "the same"));
        QTest::qWait(50);
        const Paintings paintings(*container());
        post(setter, Q_ARG(QString, "the same"));
        EXPECT_TRUE(QTest::qWaitFor([&] { return paintings.count() > 0; })) << setter;
    }
}

TEST_F(LibraryProgressPanelTest, updateIsOneStepOfTheGauge)
{
    post("onSetRangeInGauge", Q_ARG(size_t, 3));
    post("onUpdateInGauge");
    post("onUpdateInGauge");
    settle();
    EXPECT_EQ(gauge()->value(), 2);
    EXPECT_EQ(figure()->text(), "2 of 3");
}

TEST_F(LibraryProgressPanelTest, captionIsShownAndUnitsWithTheNextChange)
{
    post("onSetRangeInGauge", Q_ARG(size_t, 3));
    post("onSetUnits", Q_ARG(std::string, std::string("KB")));
    settle();
    post("onSetText", Q_ARG(std::string, std::string("T\xC3\xBCren.orvlib")));
    settle();
    EXPECT_EQ(caption()->text(), QString::fromUtf8("T\xC3\xBCren.orvlib"));
    EXPECT_EQ(figure()->text(), "0 of 3 KB");
    panel->onSetUnits("MB");
    settle();
    EXPECT_EQ(figure()->text(), "0 of 3 KB");
}

TEST_F(LibraryProgressPanelTest, labelSlotsShowTextAsItIs)
{
    post("setProgressLabelText", Q_ARG(QString, QString("<b>Doors</b>")));
    post("setProgressRangeText", Q_ARG(QString, QString("<i>1</i>")));
    settle();
    EXPECT_EQ(caption()->text(), "<b>Doors</b>");
    EXPECT_EQ(caption()->textFormat(), Qt::PlainText);
    EXPECT_EQ(figure()->text(), "<i>1</i>");
    EXPECT_EQ(figure()->textFormat(), Qt::PlainText);
}

TEST_F(LibraryProgressPanelTest, sizesBeyondIntFailInTheCheckedNarrowing)
{
    EXPECT_THROW(panel->onSetValueInGauge(kBeyondInt), boost::numeric::bad_numeric_cast);
    EXPECT_THROW(panel->onSetRangeInGauge(kBeyondInt), boost::numeric::bad_numeric_cast);
    settle();
    EXPECT_EQ(gauge()->maximum(), 100);
    EXPECT_NO_THROW(panel->onSetRangeInGauge(kBeyondInt - 1));
    settle();
    EXPECT_EQ(gauge()->maximum(), std::numeric_limits<int>::max());
}

TEST_F(LibraryProgressPanelTest, closingDestroysItOnceTheEventLoopRuns)
{
    window.show();
    const QSignalSpy cancelled(panel, &QProgressDialog::canceled);
    panel->close();
    ASSERT_FALSE(panel.isNull());
    EXPECT_EQ(cancelled.count(), 1) << "as closing any progress dialog does";
    EXPECT_EQ(splitter->count(), 2);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_TRUE(panel.isNull());
    EXPECT_EQ(splitter->count(), 1);
}

TEST_F(LibraryProgressPanelTest, closingAHiddenPanelDestroysItToo)
{
    panel->close();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_TRUE(panel.isNull());
}

TEST_F(LibraryProgressPanelTest, goesWithItsParentWhileCallsAreUnderWay)
{
    panel->onSetRangeInGauge(9);
    panel->onSetText("caption");
    delete splitter;
    EXPECT_TRUE(panel.isNull());
    settle();
}

TEST_F(LibraryProgressPanelTest, clickOnTheGaugeSwitchesTheFigure)
{
    window.show();
    post("onSetRangeInGauge", Q_ARG(size_t, 4));
    post("onSetValueInGauge", Q_ARG(size_t, 1));
    settle();
    QTest::mouseClick(gauge(), Qt::LeftButton);
    settle();
    EXPECT_EQ(figure()->text(), "");
    QTest::mouseClick(gauge(), Qt::LeftButton);
    settle();
    EXPECT_EQ(figure()->text(), "25 percent");
    QTest::mouseClick(gauge(), Qt::RightButton);
    settle();
    EXPECT_EQ(figure()->text(), "25 percent");
}

TEST_F(LibraryProgressPanelTest, allSlotsAreReachableByName)
{
    const QMetaObject& meta = LibraryProgressPanel::staticMetaObject;
    for (const char* slot :
         {"setProgressLabelText(QString)", "setProgressRangeText(QString)", "onUpdateInGauge()",
          "onSetValueInGauge(size_t)", "onSetValueInGauge(int)", "onSetRangeInGauge(size_t)",
          "onSetRangeInGauge(int)", "onSetText(std::string)", "onSetUnits(std::string)"}) {
        const int index = meta.indexOfSlot(slot);
        ASSERT_GE(index, 0) << slot;
        EXPECT_EQ(meta.method(index).access(), QMetaMethod::Public) << slot;
    }
}

TEST_F(LibraryProgressPanelTest, workerMaySendAHundredThousandUpdates)
{
    constexpr int kUpdates = 100000;
    window.resize(600, 400);
    window.show();
    std::thread worker([target = panel.data()] {
        QMetaObject::invokeMethod(target, "onSetRangeInGauge", Qt::QueuedConnection, Q_ARG(size_t, kUpdates));
        for (int i = 0; i < kUpdates; ++i)
            QMetaObject::invokeMethod(target, "onUpdateInGauge", Qt::QueuedConnection);
        QMetaObject::invokeMethod(target, "onSetText", Qt::QueuedConnection,
                                  Q_ARG(std::string, std::string("done")));
    });
    QElapsedTimer timer;
    timer.start();
    while (caption()->text() != "done" && timer.elapsed() < 60000)
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 100);
    worker.join();
    settle();
    EXPECT_EQ(gauge()->value(), kUpdates);
    EXPECT_EQ(figure()->text(), "100,000 of 100,000");
}
