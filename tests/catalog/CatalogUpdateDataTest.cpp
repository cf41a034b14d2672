#include "OrvLibrary/CatalogUpdateData.h"

#include <gtest/gtest.h>

using LibraryCatalogUpdate::CatalogUpdateData;
using LibraryCatalogUpdate::UpdateData;

namespace {

struct NeedRow
{
    std::int64_t status;
    const char* localHash;
    const char* serverETag;
    bool needed;
};

} // namespace

TEST(CatalogUpdateData, startsAsAnUnknownCoreCatalog)
{
    const CatalogUpdateData record;
    EXPECT_EQ(record.category, Library::kCoreLibrary);
    EXPECT_EQ(record.spare, "");
    EXPECT_EQ(record.localHash, "");
    EXPECT_EQ(record.serverETag, "");
    EXPECT_FALSE(record.installed);
    EXPECT_EQ(record.errorText, "");
    EXPECT_EQ(record.contentLength, 0u);
    EXPECT_EQ(record.responseStatus, 0);
}

TEST(CatalogUpdateData, needsAnUpdateOnlyAfter200WithAnotherTag)
{
    const NeedRow rows[] = {
        {200, "a", "b", true},  {200, "a", "a", false}, {200, "", "a", true},    {200, "a", "", true},
        {200, "", "", false},   {200, "a", "A", true},  {200, "a", "a ", true},  {0, "a", "b", false},
        {201, "a", "b", false}, {206, "a", "b", false}, {304, "a", "b", false},  {403, "a", "b", false},
        {404, "a", "b", false}, {500, "a", "b", false}, {-200, "a", "b", false},
    };
    for (const NeedRow& row : rows) {
        CatalogUpdateData record;
        record.responseStatus = row.status;
        record.localHash = row.localHash;
        record.serverETag = row.serverETag;
        EXPECT_EQ(record.needsUpdate(), row.needed)
            << row.status << " \"" << row.localHash << "\" \"" << row.serverETag << '"';
    }
}

TEST(UpdateData, isCopiedWithItsNames)
{
    UpdateData data;
    data.result = 2;
    data.updatedCatalogs = {"Doors", "Windows"};
    data.messageCode = 0x1036918e;
    const UpdateData copy = data;
    data.updatedCatalogs.clear();
    EXPECT_EQ(copy.result, 2);
    EXPECT_EQ(copy.updatedCatalogs, (std::set<std::string>{"Doors", "Windows"}));
    EXPECT_EQ(copy.messageCode, 0x1036918e);
}
