#include <string>

#include <gtest/gtest.h>

#include "OrvLibrary/host/fileString.h"
#include "OrvLibrary/host/impl/files/ReplacementFile_p.h"

TEST(ReplacementFile, theNameBesideFitsAndBelongsToItsTargetAlone)
{
    const std::string longName(254, 'n');
    const std::string first = host::ReplacementFile::besideName("/folder/" + longName + "1");
    const std::string second = host::ReplacementFile::besideName("/folder/" + longName + "2");
    EXPECT_NE(first, second);
    EXPECT_EQ(fileString(first).parentPath(), fileString("/folder"));
    EXPECT_LE(fileString(first).stemWithExtension().toNativeString().size(), 255u);
    EXPECT_EQ(fileString(first).extension(), fileString(".orv-new"));
    EXPECT_EQ(host::ReplacementFile::besideName("data").find('/'), std::string::npos);
}
