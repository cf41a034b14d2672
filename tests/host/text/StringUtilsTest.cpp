#include "OrvLibrary/host/StringUtils.h"

#include <cmath>
#include <limits>
#include <thread>

#include <QLocale>

#include <gmock/gmock.h>

#include "OrvLibrary/host/StringTable.h"

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

std::vector<std::string> pieces(const std::string& text, char separator)
{
    std::vector<std::string> found = {"left from before"};
    tokenizeString(text, separator, found);
    return found;
}

/// Sets the application's locale until the destructor.
class ScopedLocale
{
public:
    explicit ScopedLocale(const QLocale& locale) { QLocale::setDefault(locale); }
    ~ScopedLocale() { QLocale::setDefault(mFormer); }

private:
    QLocale mFormer;
};

class OneText : public StringTable
{
public:
    std::string text(std::uint32_t number) const override { return number == 7 ? "Tür" : ""; }
    std::string translation(const std::string& key) const override { return "<" + key + ">"; }
};

} // namespace

TEST(TokenizeString, dropsEmptyPiecesAtTheEndsAndKeepsThoseBetween)
{
    EXPECT_THAT(pieces("name:hash", ':'), ElementsAre("name", "hash"));
    EXPECT_THAT(pieces("name:", ':'), ElementsAre("name"));
    EXPECT_THAT(pieces(":hash", ':'), ElementsAre("hash"));
    EXPECT_THAT(pieces("::name::", ':'), ElementsAre("name"));
    EXPECT_THAT(pieces("a::b", ':'), ElementsAre("a", "", "b"));
    EXPECT_THAT(pieces(":a:::b:", ':'), ElementsAre("a", "", "", "b"));
    EXPECT_THAT(pieces("name", ':'), ElementsAre("name"));
    EXPECT_THAT(pieces("a b", ' '), ElementsAre("a", "b"));
    EXPECT_THAT(pieces("", ':'), IsEmpty());
    EXPECT_THAT(pieces(":::", ':'), IsEmpty());
}

TEST(TokenizeString, splitsATextThatStandsInTheResult)
{
    std::vector<std::string> found = {"a:b"};
    tokenizeString(found.front(), ':', found);
    EXPECT_THAT(found, ElementsAre("a", "b"));
}

TEST(TokenizeString, keepsBytesOfAnyValue)
{
    EXPECT_THAT(pieces(std::string("\0:\xFF", 3), ':'), ElementsAre(std::string(1, '\0'), "\xFF"));
    EXPECT_THAT(pieces("a\xFF"
                       "b",
                       '\xFF'),
                ElementsAre("a", "b"));
}

TEST(StringUtils, loadsTextsFromTheInstalledTable)
{
    OneText table;
    StringTable* const former = StringTable::install(&table);
    EXPECT_EQ(StringUtils::loadString(7), "Tür");
    EXPECT_EQ(StringUtils::loadQString(7), QString::fromUtf8("Tür"));
    EXPECT_EQ(StringUtils::loadString(8), "");
    EXPECT_EQ(xl8("key"), "<key>");
    EXPECT_EQ(StringTable::install(former), &table);
}

TEST(StringUtils, convertsBetweenUtf8AndQtText)
{
    const std::string utf8 = std::string("Stuhl\0Größe ", 13) + "\xE2\x82\xAC \xF0\x9F\x8F\xA0";
    EXPECT_EQ(StringUtils::toQString(utf8).size(), 13 - 2 + 2 + 2);
    EXPECT_EQ(StringUtils::toStdString(StringUtils::toQString(utf8)), utf8);
    EXPECT_EQ(StringUtils::toQString(""), QString());
}

TEST(StringUtils, toWin1252MapsTheCodePageAndNothingElse)
{
    EXPECT_EQ(StringUtils::toWin1252("Doors 100%"), "Doors 100%");
    EXPECT_EQ(StringUtils::toWin1252("Größe"), "Gr\xF6\xDF"
                                               "e");
    EXPECT_EQ(StringUtils::toWin1252("€"), "\x80");
    EXPECT_EQ(StringUtils::toWin1252("„x“"), "\x84x\x93");
    EXPECT_EQ(StringUtils::toWin1252("Ω中"), "??");
    EXPECT_EQ(StringUtils::toWin1252("a🏠b"), "a?b") << "one mark for one character";
    EXPECT_EQ(StringUtils::toWin1252("a\xFF"), "a?") << "bytes that are not UTF-8";
    EXPECT_EQ(StringUtils::toWin1252("a\u200Bb\uFEFFc\u2060\u200D\u061C"), "a?b?c???") << "invisible ones";
    EXPECT_EQ(StringUtils::toWin1252("\u0080"), "?") << "the byte of the euro sign";
    EXPECT_EQ(StringUtils::toWin1252("\U000100E9"), "?") << "whose low half is that of a letter";
    EXPECT_EQ(StringUtils::toWin1252("a\u00AD\u00A0"), "a\xAD\xA0");
    EXPECT_EQ(StringUtils::toWin1252(""), "");
    EXPECT_EQ(StringUtils::toWin1252(std::string("\xC3\xA9\0b", 4)), std::string("\xE9\0b", 3));
}

TEST(StringUtils, removeAllOfRemovesEveryListedByte)
{
    EXPECT_EQ(StringUtils::removeAllOf("\"a\"b\"", "\""), "ab");
    EXPECT_EQ(StringUtils::removeAllOf(" a\r\nb ", " \r\n"), "ab");
    EXPECT_EQ(StringUtils::removeAllOf("abc", ""), "abc");
    EXPECT_EQ(StringUtils::removeAllOf("", "abc"), "");
    EXPECT_EQ(StringUtils::removeAllOf(std::string("a\0b", 3), std::string(1, '\0')), "ab");
}

TEST(CompareStrings, ordersNumbersByValueInTheCLocale)
{
    ASSERT_EQ(QLocale().language(), QLocale::C) << "the tests run with LC_ALL=C.UTF-8";
    EXPECT_LT(StringUtils::compareStrings("Door 2", "Door 10", true), 0);
    EXPECT_GT(StringUtils::compareStrings("Door 10", "door 2", true), 0);
    EXPECT_LT(StringUtils::compareStrings("2", "10", false), 0);
    EXPECT_LT(StringUtils::compareStrings("a", "B", true), 0);
    EXPECT_LT(StringUtils::compareStrings("", "a", true), 0);
}

TEST(CompareStrings, ignoresLetterCaseOnlyWhenAsked)
{
    EXPECT_EQ(StringUtils::compareStrings("Chairs", "cHAIRS", true), 0);
    EXPECT_NE(StringUtils::compareStrings("Chairs", "cHAIRS", false), 0);
    EXPECT_EQ(StringUtils::compareStrings("Ärger", "äRGER", true), 0);
    EXPECT_EQ(StringUtils::compareStrings("same", "same", false), 0);
    EXPECT_NE(StringUtils::compareStrings("cafe", "café", true), 0);
}

TEST(CompareStrings, followsTheApplicationsLanguage)
{
    EXPECT_LT(StringUtils::compareStrings("ö", "z", true), 0);
    {
        const ScopedLocale swedish(QLocale(QLocale::Swedish));
        EXPECT_GT(StringUtils::compareStrings("ö", "z", true), 0);
    }
    EXPECT_LT(StringUtils::compareStrings("ö", "z", true), 0);
}

TEST(CompareStrings, worksOnManyThreadsAtOnce)
{
    std::vector<std::thread> threads;
    std::vector<int> wrong(4, 0);
    for (int& count : wrong) {
        threads.emplace_back([&count] {
            for (int i = 0; i < 2000; ++i)
                count += StringUtils::compareStrings("Lamp 9", "lamp 11", true) >= 0;
        });
    }
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_THAT(wrong, testing::Each(0));
}

TEST(FormatWithThousandsSeparatorPrecision, groupsInThousandsInTheCLocale)
{
    const struct
    {
        double value;
        int precision;
        const char* text;
    } cases[] = {
        {0, 9, "0"},
        {7, 9, "7"},
        {999, 9, "999"},
        {1000, 9, "1,000"},
        {1234567, 9, "1,234,567"},
        {2147483647, 9, "2,147,483,647"},
        {-1234567, 9, "-1,234,567"},
        {1234.5, 9, "1,234.5"},
        {1234.4, 4, "1,234"},
        {1235.5, 4, "1,236"},
        {0.125, 9, "0.125"},
        {0.75, 3, "0.75"},
        {0.75, 2, "0.8"},
        {1.75, 3, "1.75"},
        {1.75, 2, "1.8"},
        {10.75, 3, "10.8"},
        {1000000000000.0, 9, "1,000,000,000,000"},
        {100, 1, "100"},
        {100, 0, "100"},
    };
    for (const auto& c : cases)
        EXPECT_EQ(formatWithThousandsSeparatorPrecision(c.value, c.precision), c.text) << c.value;
}

TEST(FormatWithThousandsSeparatorPrecision, followsTheUsersLocale)
{
    const ScopedLocale german(QLocale(QLocale::German, QLocale::Germany));
    EXPECT_EQ(formatWithThousandsSeparatorPrecision(1234567.5, 9), "1.234.567,5");
}

TEST(IRoundoff, roundsHalvesAwayFromZeroAndSaturates)
{
    constexpr auto kMax = std::numeric_limits<std::int64_t>::max();
    constexpr auto kMin = std::numeric_limits<std::int64_t>::min();
    EXPECT_EQ(iRoundoff(0.0), 0);
    EXPECT_EQ(iRoundoff(2.5), 3);
    EXPECT_EQ(iRoundoff(-2.5), -3);
    EXPECT_EQ(iRoundoff(2.4999), 2);
    EXPECT_EQ(iRoundoff(0.49999999999999994), 0);
    EXPECT_EQ(iRoundoff(9007199254740993.0), 9007199254740992);
    EXPECT_EQ(iRoundoff(9.3e18), kMax);
    EXPECT_EQ(iRoundoff(9223372036854775808.0), kMax);
    EXPECT_EQ(iRoundoff(-9223372036854775808.0), kMin);
    EXPECT_EQ(iRoundoff(-1e300), kMin);
    EXPECT_EQ(iRoundoff(std::numeric_limits<double>::infinity()), kMax);
    EXPECT_EQ(iRoundoff(std::nan("")), 0);
}

TEST(NumericCast, throwsWhenTheValueDoesNotFit)
{
    EXPECT_EQ(numeric_cast<int>(std::size_t{2147483647}), 2147483647);
    EXPECT_THROW(numeric_cast<int>(std::size_t{2147483648u}), boost::numeric::bad_numeric_cast);
}
