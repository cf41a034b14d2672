#include "OrvLibrary/host/StringTable.h"

#include <thread>

#include <QCoreApplication>
#include <QLocale>
#include <QTranslator>

#include <boost/format.hpp>
#include <gmock/gmock.h>

#include "OrvLibrary/host/StringUtils.h"
#include "OrvLibrary/host/impl/services/DefaultStringTable_p.h"

namespace {

/// Installs the library's German texts until the destructor.
class GermanTexts
{
public:
    GermanTexts()
    {
        EXPECT_TRUE(mTranslator.load(QLocale(QLocale::German, QLocale::Germany), "orvlibrary", "_",
                                     ":/orvlibrary/translations"));
        QCoreApplication::installTranslator(&mTranslator);
    }
    ~GermanTexts() { QCoreApplication::removeTranslator(&mTranslator); }

    const QTranslator& translator() const { return mTranslator; }

private:
    QTranslator mTranslator;
};

/// A translator with a text for one id only.
class OneId : public QTranslator
{
public:
    OneId(const QString& id, const QString& text) : mId(id), mText(text)
    {
        QCoreApplication::installTranslator(this);
    }
    ~OneId() override { QCoreApplication::removeTranslator(this); }

    bool isEmpty() const override { return false; }
    QString translate(const char*, const char* source, const char*, int) const override
    {
        return mId == QLatin1String(source) ? mText : QString();
    }

private:
    QString mId;
    QString mText;
};

std::string filled(const std::string& format, const std::vector<std::string>& arguments)
{
    boost::format text(format); // throws if the format or the number of arguments is wrong
    for (const std::string& argument : arguments)
        text % argument;
    return text.str();
}

} // namespace

TEST(StringTable, hasAnEnglishTextForEveryNumberThatTheLibraryUses)
{
    std::vector<std::uint32_t> expected = {2749, 2750, 2752, 2753, 2754, 2893,
                                           8709, 8717, 8723, 8727, 8745, 8930};
    for (std::uint32_t number = 10000; number <= 10014; ++number)
        expected.push_back(number);
    expected.insert(expected.end(), {10108, 272032175, 272032338, 272032391});
    EXPECT_EQ(DefaultStringTable::numbers(), expected);
    for (const std::uint32_t number : expected)
        EXPECT_NE(StringTable::get().text(number), "") << number;
}

TEST(StringTable, formatsTakeTheirArguments)
{
    const StringTable& table = StringTable::get();
    EXPECT_EQ(filled(table.text(2749), {"42"}), "42%");
    EXPECT_EQ(filled(table.text(2750), {"3", "4"}), "3 of 4");
    EXPECT_EQ(filled(table.text(2893), {"chair.png"}), "Unpacking chair.png");
    EXPECT_EQ(filled(table.text(272032391), {"/a"}).find('%'), std::string::npos);
    EXPECT_EQ(filled(table.text(272032175), {"any text"}), "any text");
}

TEST(StringTable, prefixesEndWithABlank)
{
    for (const std::uint32_t number : {8709u, 8723u, 8727u})
        EXPECT_EQ(StringTable::get().text(number).back(), ' ') << number;
}

TEST(StringTable, unknownNumbersHaveNoText)
{
    for (const std::uint32_t number : {0u, 2751u, 9999u, 10015u, 20000u, 4294967295u})
        EXPECT_EQ(StringTable::get().text(number), "") << number;
}

TEST(StringTable, keysStandForThemselvesInEnglish)
{
    EXPECT_EQ(xl8(".downloads."), ".downloads.");
    EXPECT_EQ(xl8("LibraryProgressPanel"), "LibraryProgressPanel");
    EXPECT_EQ(xl8("no such key"), "no such key");
    EXPECT_EQ(xl8(""), "");
}

TEST(StringTable, translatorsComeBeforeTheEnglishTexts)
{
    {
        const OneId translator("orv-8745", "Ko");
        EXPECT_EQ(StringTable::get().text(8745), "Ko");
        EXPECT_EQ(StringTable::get().text(8930), "No Filter");
    }
    EXPECT_EQ(StringTable::get().text(8745), "KB");
}

TEST(StringTable, translatorsMayAddNumbersAndKeys)
{
    {
        const OneId number("orv-20000", "Art Deco");
        const OneId key("LibraryProgressPanel", "Panneau");
        EXPECT_EQ(StringTable::get().text(20000), "Art Deco");
        EXPECT_EQ(xl8("LibraryProgressPanel"), "Panneau");
    }
    EXPECT_EQ(StringTable::get().text(20000), "");
}

TEST(StringTable, germanHasEveryText)
{
    const GermanTexts german;
    for (const std::uint32_t number : DefaultStringTable::numbers()) {
        const QString id = "orv-" + QString::number(number);
        EXPECT_NE(german.translator().translate("", qPrintable(id)), QString()) << number;
    }
    EXPECT_EQ(StringUtils::loadString(8930), "Kein Filter");
    EXPECT_EQ(StringUtils::loadString(10007), "Viktorianisch");
    EXPECT_EQ(filled(StringUtils::loadString(2750), {"3", "4"}), "3 von 4");
    EXPECT_EQ(filled(StringUtils::loadString(2749), {"42"}), "42\u00A0%");
    EXPECT_EQ(filled(StringUtils::loadString(2893), {"a.png"}), "a.png wird entpackt");
    EXPECT_NE(filled(StringUtils::loadString(272032391), {"/a"}).find("/a"), std::string::npos);
    EXPECT_EQ(xl8(".downloads."), ".downloads.") << "folder names must not change with the language";
    EXPECT_EQ(xl8("LibraryProgressPanel"), "LibraryProgressPanel");
    EXPECT_EQ(StringUtils::loadString(20000), "");
}

TEST(StringTable, germanTextsEndAsTheEnglishOnesDo)
{
    const GermanTexts german;
    EXPECT_FALSE(DefaultStringTable::numbers().empty());
    for (const std::uint32_t number : DefaultStringTable::numbers()) {
        const bool isPrefix = DefaultStringTable::english(number).back() == ' ';
        EXPECT_EQ(StringUtils::loadString(number).back() == ' ', isPrefix) << number;
    }
}

TEST(StringTable, mayBeAskedFromAnyThread)
{
    const GermanTexts german;
    std::vector<std::thread> threads;
    std::vector<int> wrong(4, 0);
    for (int& count : wrong) {
        threads.emplace_back([&count] {
            for (int i = 0; i < 2000; ++i)
                count += StringUtils::loadString(10108).empty() || StringUtils::loadString(1) != "";
        });
    }
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_THAT(wrong, testing::Each(0));
}

TEST(StringTable, installGivesTheFormerTableBack)
{
    StringTable& first = StringTable::get();
    DefaultStringTable other;
    EXPECT_EQ(StringTable::install(&other), nullptr);
    EXPECT_EQ(&StringTable::get(), &other);
    EXPECT_EQ(StringTable::install(nullptr), &other);
    EXPECT_EQ(&StringTable::get(), &first);
}
