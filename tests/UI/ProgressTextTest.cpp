#include "OrvLibrary/UI/ProgressText.h"

#include <limits>
#include <locale>

#include <QCoreApplication>
#include <QMetaObject>
#include <QSignalSpy>

#include <gmock/gmock.h>

#include "tests/UI/UiHost.h"

using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

namespace {

// A progress text below a receiver of its labels. The tests call its slots by name, as the producers do.
class ProgressTextTest : public testing::Test
{
protected:
    void make(int displayType)
    {
        host.setDisplayType(displayType);
        text = new ProgressText(&receiver);
    }

    template <class... Arguments>
    void call(const char* slot, Arguments... arguments)
    {
        ASSERT_TRUE(QMetaObject::invokeMethod(text, slot, Qt::QueuedConnection, arguments...)) << slot;
        QCoreApplication::sendPostedEvents();
    }

    void show(int value, int range)
    {
        call("onSetRange", Q_ARG(int, range));
        call("onSetValue", Q_ARG(int, value));
    }

    QString label() const { return receiver.labels.value(receiver.labels.size() - 1); }
    QString range() const { return receiver.ranges.value(receiver.ranges.size() - 1); }

    test::UiHost host;
    test::LabelReceiver receiver;
    ProgressText* text = nullptr;
};

struct Figure
{
    int value, range;
    const char* text;
};

} // namespace

TEST_F(ProgressTextTest, sendsNothingBeforeTheFirstChange)
{
    make(3);
    QCoreApplication::sendPostedEvents();
    EXPECT_TRUE(receiver.labels.isEmpty());
    EXPECT_TRUE(receiver.ranges.isEmpty());
}

TEST_F(ProgressTextTest, captionOnlyClearsTheFigure)
{
    make(1);
    show(3, 4);
    call("onSetText", Q_ARG(std::string, std::string("T\xC3\xBCren")));
    EXPECT_EQ(label(), QString::fromUtf8("T\xC3\xBCren"));
    EXPECT_EQ(range(), "");
}

TEST_F(ProgressTextTest, percentageIsTruncatedClampedAndSafeWithoutARange)
{
    make(2);
    const Figure figures[] = {
        {1, 3, "33 percent"},     {5, 4, "100 percent"}, {0, 7, "0 percent"},    {2, 3, "66 percent"},
        {5, 0, "0 percent"},      {5, -3, "0 percent"},  {-1, 4, "-25 percent"}, {-1, 3, "-33 percent"},
        {199, 200, "99 percent"}, {4, 4, "100 percent"}, {1, 1, "100 percent"},  {0, 1, "0 percent"},
    };
    for (const Figure& figure : figures) {
        show(figure.value, figure.range);
        EXPECT_EQ(range(), figure.text) << figure.value << " of " << figure.range;
    }
}

TEST_F(ProgressTextTest, percentageWrapsInThirtyTwoBits)
{
    make(2);
    show(21474836, 21474837);
    EXPECT_EQ(range(), "99 percent");
    // 21474837 * 100 is 2^31 + 52, which is -2147483596 as a signed number of 32 bits.
    show(21474837, 21474837);
    EXPECT_EQ(range(), "-99 percent");
    show(std::numeric_limits<int>::max(), std::numeric_limits<int>::max());
    EXPECT_EQ(range(), "0 percent");
    show(std::numeric_limits<int>::min(), 5);
    EXPECT_EQ(range(), "0 percent");
}

TEST_F(ProgressTextTest, percentageShowsNoUnitWord)
{
    make(2);
    text->setUnitString("KB");
    show(1, 4);
    EXPECT_EQ(range(), "25 percent");
}

TEST_F(ProgressTextTest, countShowsDoneAndTotalWithThousandsSeparators)
{
    make(3);
    const Figure figures[] = {
        {5, 4, "4 of 4"},     {0, 0, "0 of 0"},    {1234, 1234567, "1,234 of 1,234,567"},
        {-5, 10, "-5 of 10"}, {3, -2, "-2 of -2"}, {123456789, 123456789, "123,456,789 of 123,456,789"},
    };
    for (const Figure& figure : figures) {
        show(figure.value, figure.range);
        EXPECT_EQ(range(), figure.text) << figure.value << " of " << figure.range;
    }
}

TEST_F(ProgressTextTest, unitWordFollowsTheCountAtTheNextChange)
{
    make(3);
    show(1, 2);
    EXPECT_EQ(range(), "1 of 2");
    const int sent = receiver.ranges.size();
    text->setUnitString("KB");
    QCoreApplication::sendPostedEvents();
    EXPECT_EQ(receiver.ranges.size(), sent);
    show(1, 2);
    EXPECT_EQ(range(), "1 of 2 KB");
    text->setUnitString("");
    show(2, 2);
    EXPECT_EQ(range(), "2 of 2");
}

TEST_F(ProgressTextTest, formatsArePositional)
{
    make(3);
    host.texts[2750] = "%2% / %1%";
    show(1, 2);
    EXPECT_EQ(range(), "2 / 1");
}

TEST_F(ProgressTextTest, brokenTranslatedFormatShowsItsRawText)
{
    host.texts[2750] = "%1% of all";
    host.texts[2749] = "100%";
    make(3);
    show(1, 2);
    EXPECT_EQ(range(), "%1% of all");
    call("onSwitchDisplayType", Q_ARG(ProgressDisplayType, kProgressPercentage));
    EXPECT_EQ(range(), "100%");
}

TEST_F(ProgressTextTest, percentageIgnoresTheLocaleOfTheProcess)
{
    struct Grouping : std::numpunct<char>
    {
        char do_thousands_sep() const override { return '.'; }
        std::string do_grouping() const override { return "\1"; }
    };
    const std::locale former = std::locale::global(std::locale(std::locale::classic(), new Grouping));
    make(2);
    show(4, 4);
    std::locale::global(former);
    EXPECT_EQ(range(), "100 percent");
}

TEST_F(ProgressTextTest, switchingTheDisplayTypeRecomposes)
{
    make(1);
    show(1, 4);
    call("onSwitchDisplayType", Q_ARG(ProgressDisplayType, kProgressPercentage));
    EXPECT_EQ(range(), "25 percent");
    call("onSwitchDisplayType", Q_ARG(ProgressDisplayType, kProgressCount));
    EXPECT_EQ(range(), "1 of 4");
    call("onSwitchDisplayType", Q_ARG(ProgressDisplayType, kProgressCaptionOnly));
    EXPECT_EQ(range(), "");
}

TEST_F(ProgressTextTest, anyOtherDisplayTypeShowsNoFigure)
{
    for (const int type : {0, 4, -1, std::numeric_limits<int>::max()}) {
        make(type);
        show(1, 4);
        EXPECT_EQ(range(), "") << type;
        delete text;
    }
}

TEST_F(ProgressTextTest, pauseAndResumeSendBothTextsUnchanged)
{
    make(3);
    call("onSetText", Q_ARG(std::string, std::string("caption")));
    show(1, 2);
    for (const char* slot : {"onPauseProcess", "onResumeProcess", "onResumeProcess"}) {
        receiver.labels.clear();
        receiver.ranges.clear();
        call(slot);
        EXPECT_EQ(receiver.labels, QStringList("caption")) << slot;
        EXPECT_EQ(receiver.ranges, QStringList("1 of 2")) << slot;
    }
}

TEST_F(ProgressTextTest, bothSignalsComeAtEveryChangeEvenWhenNothingChanged)
{
    make(2);
    QSignalSpy labels(text, &ProgressText::setLabelText);
    QSignalSpy ranges(text, &ProgressText::setRangeText);
    for (int i = 0; i < 3; ++i)
        call("onSetValue", Q_ARG(int, 1));
    EXPECT_EQ(labels.count(), 3);
    EXPECT_EQ(ranges.count(), 3);
}

TEST_F(ProgressTextTest, preferenceOfAnotherTypeIsReportedAndShowsNoFigure)
{
    host.services().prefSet().setPref(PrefId::kProgressDisplayType, true);
    text = new ProgressText(&receiver);
    ASSERT_THAT(host.services().messages(), SizeIs(1));
    EXPECT_EQ(host.services().messages().front().number, error::Message::kPreferenceType);
    EXPECT_THAT(host.services().messages().front().text1, HasSubstr("Get pref isA failure: "));
    show(1, 4);
    EXPECT_EQ(range(), "");
}

TEST_F(ProgressTextTest, slotsArePrivateButReachableByName)
{
    const QMetaObject& meta = ProgressText::staticMetaObject;
    for (const char* slot :
         {"onPauseProcess()", "onResumeProcess()", "onSwitchDisplayType(ProgressDisplayType)",
          "onSetValue(int)", "onSetRange(int)", "onSetText(std::string)"}) {
        const int index = meta.indexOfSlot(slot);
        ASSERT_GE(index, 0) << slot;
        EXPECT_EQ(meta.method(index).access(), QMetaMethod::Private) << slot;
    }
}
