#include "OrvLibrary/host/impl/zip/ZipFormat_p.h"

#include <gtest/gtest.h>

using ZipUtils::findExtraField;
using ZipUtils::withoutExtraField;

namespace {

std::string field(std::uint16_t id, const std::string& content)
{
    std::string bytes;
    ZipUtils::put16(bytes, id);
    ZipUtils::put16(bytes, content.size());
    return bytes + content;
}

} // namespace

TEST(ZipFormat, extraFieldIsFoundBehindOthers)
{
    const std::string extra = field(7, "seven") + field(8, "") + field(9, "nine");
    EXPECT_EQ(findExtraField(extra, 7), "seven");
    EXPECT_EQ(findExtraField(extra, 9), "nine");
    EXPECT_EQ(findExtraField(extra, 10), "");
}

TEST(ZipFormat, everyFieldOfOneKindIsRemoved)
{
    const std::string extra = field(1, "a") + field(7, "b") + field(1, "c") + field(8, "d") + field(1, "e");
    EXPECT_EQ(withoutExtraField(extra, 1), field(7, "b") + field(8, "d"));
    EXPECT_EQ(withoutExtraField(extra, 2), extra);
    EXPECT_EQ(withoutExtraField(field(8, ""), 8), "") << "a field may be empty";
}

TEST(ZipFormat, fieldThatIsCutOffEndsTheSearchAndStays)
{
    std::string cut = field(1, "four");
    cut.pop_back();
    EXPECT_EQ(findExtraField(cut, 1).data(), nullptr);
    EXPECT_EQ(withoutExtraField(field(7, "b") + cut, 1), field(7, "b") + cut);
    // One byte later, these bytes would be a field of kind 7.
    const std::string looksLikeOne = std::string("\x01") + field(7, "b");
    EXPECT_EQ(findExtraField(looksLikeOne, 7).data(), nullptr);
    EXPECT_EQ(withoutExtraField(looksLikeOne, 7), looksLikeOne);
}
