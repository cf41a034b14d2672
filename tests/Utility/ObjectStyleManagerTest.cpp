#include "OrvLibrary/Utility/ObjectStyleManager.h"

#include <map>

#include <gmock/gmock.h>

#include "OrvLibrary/host/StringTable.h"
#include "OrvLibrary/host/StringUtils.h"

namespace {

/// Installs test texts until the destructor and counts the calls.
class Texts : public StringTable
{
public:
    Texts() : mFormer(install(this)) {}
    ~Texts() override { install(mFormer); }

    std::string text(std::uint32_t number) const override
    {
        ++asked;
        const auto found = texts.find(number);
        return found == texts.end() ? "" : found->second;
    }
    std::string translation(const std::string& key) const override { return key; }

    std::map<std::uint32_t, std::string> texts;
    mutable int asked = 0;

private:
    StringTable* mFormer;
};

} // namespace

TEST(ObjectStyleManager, knowsTheBuiltInStyles)
{
    const ObjectStyleManager& manager = ObjectStyleManager::getObjectStyleManager();
    for (long number = 10000; number <= 10014; ++number) {
        EXPECT_NE(manager.getStyleName(number), "") << number;
        EXPECT_EQ(manager.getStyleName(number), StringUtils::loadString(static_cast<std::uint32_t>(number)));
    }
}

TEST(ObjectStyleManager, anUnknownStyleHasNoName)
{
    const ObjectStyleManager& manager = ObjectStyleManager::getObjectStyleManager();
    for (const long number : {9999L, 10015L, 0L, -1L, 4294977296L})
        EXPECT_EQ(manager.getStyleName(number), "") << number;
}

TEST(ObjectStyleManager, addsAndRefreshesAStyle)
{
    ObjectStyleManager& manager = ObjectStyleManager::getObjectStyleManager();
    Texts texts;
    texts.texts[20000] = "Art Deco";
    EXPECT_EQ(manager.getStyleName(20000), "");
    manager.addObjectStyle(20000);
    EXPECT_EQ(manager.getStyleName(20000), "Art Deco");
    texts.texts[20000] = "Art Nouveau";
    EXPECT_EQ(manager.getStyleName(20000), "Art Deco");
    manager.addObjectStyle(20000);
    EXPECT_EQ(manager.getStyleName(20000), "Art Nouveau");
}

TEST(ObjectStyleManager, storesAnEmptyNameWhenThereIsNoText)
{
    ObjectStyleManager& manager = ObjectStyleManager::getObjectStyleManager();
    Texts texts;
    manager.addObjectStyle(20001);
    EXPECT_EQ(manager.getStyleName(20001), "");
}

TEST(ObjectStyleManager, asksForTheTextByTheLow32Bits)
{
    ObjectStyleManager& manager = ObjectStyleManager::getObjectStyleManager();
    Texts texts;
    texts.texts[5] = "five";
    texts.texts[4294967295u] = "last";
    manager.addObjectStyle(4294967301L);
    manager.addObjectStyle(-1);
    EXPECT_EQ(manager.getStyleName(4294967301L), "five");
    EXPECT_EQ(manager.getStyleName(-1), "last");
    EXPECT_EQ(manager.getStyleName(5), "");
}

TEST(ObjectStyleManager, loadsOnce)
{
    ObjectStyleManager& manager = ObjectStyleManager::getObjectStyleManager();
    const std::string& name = manager.getStyleName(10000);
    const Texts texts;
    EXPECT_EQ(&ObjectStyleManager::getObjectStyleManager(), &manager);
    manager.loadObjectStyles();
    EXPECT_EQ(texts.asked, 0);
    EXPECT_EQ(&manager.getStyleName(10000), &name) << "references stay valid";
    EXPECT_NE(name, "");
}
