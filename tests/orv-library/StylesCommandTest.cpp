#include <QJsonArray>

#include <gmock/gmock.h>

#include "tests/orv-library/Program.h"

using testing::HasSubstr;

TEST(StylesCommand, listsTheBuiltInStylesInOrder)
{
    const test::Program program;
    const test::ProgramResult result = program.run({"styles", "list", "--json"});
    EXPECT_EQ(0, result.status);
    const QJsonArray styles = result.json()["styles"].toArray();
    ASSERT_EQ(15, styles.size());
    for (int i = 0; i < styles.size(); ++i) {
        const QJsonObject style = styles[i].toObject();
        EXPECT_EQ((QStringList{"name", "number"}), style.keys());
        EXPECT_EQ(10000 + i, style["number"].toInt());
        EXPECT_FALSE(style["name"].toString().isEmpty()) << i;
    }
    EXPECT_EQ("Traditional", styles[0].toObject()["name"].toString());
}

TEST(StylesCommand, printsOneStylePerLineForPeople)
{
    const test::Program program;
    const test::ProgramResult result = program.run({"styles", "list"});
    EXPECT_EQ(0, result.status);
    EXPECT_THAT(result.out, testing::StartsWith("10000  Traditional\n10001  "));
    EXPECT_THAT(result.out, HasSubstr("\n10014  "));
}

TEST(StylesCommand, showsOneStyle)
{
    const test::Program program;
    EXPECT_EQ("10007  Victorian\n", program.run({"styles", "show", "10007"}).out);
    const QJsonObject expected{{"styles", QJsonArray{QJsonObject{{"number", 10007}, {"name", "Victorian"}}}}};
    EXPECT_EQ(expected, program.run({"styles", "show", "10007", "--json"}).json());
}

TEST(StylesCommand, anUnknownNumberFails)
{
    const test::Program program;
    for (const char* const number : {"9999", "10015", "0", "4294977296", "9223372036854775807"}) {
        const test::ProgramResult result = program.run({"styles", "show", number});
        EXPECT_EQ(1, result.status) << number;
        EXPECT_EQ("", result.out);
        EXPECT_EQ(std::string("orv-library: no object style has the number ") + number + "\n", result.err);
    }
}

TEST(StylesCommand, refusesWhatIsNoNumber)
{
    const test::Program program;
    const std::vector<std::vector<std::string>> usages = {{"styles"},
                                                          {"styles", "show"},
                                                          {"styles", "show", "oak"},
                                                          {"styles", "show", "10000x"},
                                                          {"styles", "show", "9223372036854775808"},
                                                          {"styles", "show", "10000", "10001"},
                                                          {"styles", "list", "10000"},
                                                          {"styles", "paint"}};
    for (const auto& usage : usages)
        EXPECT_EQ(2, program.run(usage).status) << testing::PrintToString(usage);
}
