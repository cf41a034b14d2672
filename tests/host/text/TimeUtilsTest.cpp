#include "OrvLibrary/host/TimeUtils.h"

#include <chrono>
#include <cstdlib>
#include <ctime>
#include <random>
#include <string>

#include <boost/date_time/posix_time/posix_time.hpp>
#include <gtest/gtest.h>

#include "tests/support/GroupingLocale.h"

using boost::gregorian::date;
using boost::posix_time::microseconds;
using boost::posix_time::ptime;
using boost::posix_time::time_duration;

TEST(TimeUtils, writesIsoTextToTheMicrosecond)
{
    const ptime time(date(2026, 11, 21), time_duration(3, 35, 12));
    EXPECT_EQ(Library::toString(time), "20261121T033512");
    EXPECT_EQ(Library::toString(time + microseconds(250000)), "20261121T033512.250000");
    EXPECT_EQ(Library::toString(ptime()), "not-a-date-time");
}

TEST(TimeUtils, readsBackWhatItWrites)
{
    const ptime times[] = {
        ptime(date(2026, 11, 21), time_duration(3, 35, 12)),
        ptime(date(2026, 2, 28), time_duration(23, 59, 59) + microseconds(1)),
        ptime(date(1970, 1, 1), time_duration(0, 0, 0)),
        ptime(boost::date_time::min_date_time),
        ptime(boost::date_time::max_date_time),
        ptime(boost::date_time::pos_infin),
        ptime(boost::date_time::neg_infin),
        Library::getTimeNow(),
    };
    for (const ptime& time : times)
        EXPECT_EQ(Library::fromString(Library::toString(time)), time) << time;
    EXPECT_TRUE(Library::fromString(Library::toString(ptime())).is_not_a_date_time());
}

TEST(TimeUtils, writesTheSameWhereTheProcessGroupsDigits)
{
    const test::ScopedGrouping grouping;
    const ptime time(date(2026, 11, 21), time_duration(21, 16, 35) + microseconds(528207));
    EXPECT_EQ(Library::toString(time), "20261121T211635.528207");
    EXPECT_EQ(Library::fromString(Library::toString(time)), time);
    EXPECT_EQ(Library::getTimeNowString().find_first_not_of("0123456789-: "), std::string::npos);
    EXPECT_EQ(Library::getTimeNowString().size(), 19u);
}

TEST(TimeUtils, readsShorterForms)
{
    EXPECT_EQ(Library::fromString("20261121T0335"), ptime(date(2026, 11, 21), time_duration(3, 35, 0)));
    EXPECT_EQ(Library::fromString("20261121T033512.5"),
              ptime(date(2026, 11, 21), time_duration(3, 35, 12) + microseconds(500000)));
    EXPECT_EQ(Library::fromString("20261121T033512,5"), Library::fromString("20261121T033512.5"));
    EXPECT_EQ(Library::fromString("20261121T033512.1234567"), Library::fromString("20261121T033512.123456"));
}

TEST(TimeUtils, agreesWithTheDateLibrary)
{
    std::mt19937 random(1);
    const auto digits = [&random](unsigned most, std::size_t width) {
        const std::string number = std::to_string(random() % (most + 1));
        return std::string(width - number.size(), '0') + number;
    };
    int read = 0;
    for (int i = 0; i < 20000; ++i) {
        std::string text =
            digits(9999, 4) + digits(13, 2) + digits(32, 2) + "T" + digits(23, 2) + digits(59, 2);
        if (random() % 8 != 0)
            text += digits(59, 2) + (random() % 2 ? "." + digits(9999999, 1 + 6 + random() % 3) : "");
        ptime expected;
        try {
            expected = boost::posix_time::from_iso_string(text);
            ++read;
        } catch (const std::exception&) {
        }
        ASSERT_EQ(Library::fromString(text), expected) << text;
    }
    EXPECT_GT(read, 10000);
}

TEST(TimeUtils, otherTextsAreNoDateTime)
{
    const char* const texts[] = {
        "",
        " ",
        "T",
        "garbage",
        "20261121",
        "20261121T",
        "20261121T03",
        "20261121T03351",
        "20261121T240000",
        "20261121T250000",
        "20261121T036000",
        "20261121T033560",
        "20261121T-033512",
        "-20261121T033512",
        "20261121t033512",
        "20261121T033512x",
        "20261121T033512.",
        "20261121T033512.x",
        "20261121T033512 ",
        " 20261121T033512",
        "2026-11-21T03:35:12",
        "20261301T000000",
        "20260230T000000",
        "00000000T000000",
        "99999999T999999",
        "20261121T03:35:12",
        "20261121T0:3512",
        "20261121T0/3512",
        "Not-A-Date-Time",
        "\xC3\xA9",
    };
    for (const char* const text : texts)
        EXPECT_TRUE(Library::fromString(text).is_not_a_date_time()) << text;
    EXPECT_TRUE(Library::fromString(std::string(100000, '1')).is_not_a_date_time());
    EXPECT_TRUE(Library::fromString(std::string("20261121T033512\0", 16)).is_not_a_date_time());
}

TEST(TimeUtils, nowIsUtcWhateverTheTimeZone)
{
    const ptime epoch(date(1970, 1, 1));
    setenv("TZ", "Asia/Tokyo", 1);
    tzset();
    const auto before = std::chrono::system_clock::now().time_since_epoch();
    const ptime now = Library::getTimeNow();
    const std::string text = Library::getTimeNowString();
    const auto after = std::chrono::system_clock::now().time_since_epoch();
    setenv("TZ", "UTC", 1);
    tzset();
    const auto microsecondsOf = [](auto duration) {
        return std::chrono::duration_cast<std::chrono::microseconds>(duration).count();
    };
    EXPECT_GE((now - epoch).total_microseconds(), microsecondsOf(before));
    EXPECT_LE((now - epoch).total_microseconds(), microsecondsOf(after));
    const ptime written = boost::posix_time::time_from_string(text);
    EXPECT_LE(written - now, boost::posix_time::seconds(2));
    EXPECT_LE(now - written, boost::posix_time::seconds(2));
}

TEST(TimeUtils, nowAsTextHasOneForm)
{
    const std::string text = Library::getTimeNowString();
    ASSERT_EQ(text.size(), std::string("2026-11-21 03:35:12").size());
    EXPECT_EQ(text.find_first_not_of("0123456789-: "), std::string::npos);
    EXPECT_EQ(text[4], '-');
    EXPECT_EQ(text[10], ' ');
    EXPECT_EQ(text[13], ':');
}
