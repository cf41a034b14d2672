#include "OrvLibrary/host/SQL.h"

#include <string>

#include <gtest/gtest.h>

#include "OrvLibrary/host/StringUtils.h"

TEST(SQL, readsWindows1252)
{
    EXPECT_EQ(SQL::to_utf8("Doors"), "Doors");
    EXPECT_EQ(SQL::to_utf8("\xE9"), "é");
    EXPECT_EQ(SQL::to_utf8("\x80 \x99"), "€ ™");
    EXPECT_EQ(SQL::to_utf8(""), "");
}

TEST(SQL, everyByteHasATextAndComesBackFromIt)
{
    std::string bytes;
    for (int byte = 0; byte < 256; ++byte)
        bytes += static_cast<char>(byte);
    const std::string utf8 = SQL::to_utf8(bytes);
    EXPECT_TRUE(QString::fromStdString(utf8).indexOf(QChar::ReplacementCharacter) < 0);
    EXPECT_EQ(StringUtils::toWin1252(utf8), bytes);
}
