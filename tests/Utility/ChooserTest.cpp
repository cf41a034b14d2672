#include "OrvLibrary/Utility/Chooser.h"

#include <algorithm>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

using Library::Chooser;
using Library::TreeItemData;

namespace {

class ChooserTest : public testing::Test
{
protected:
    ChooserTest() { Chooser::cleanup(); }
    ~ChooserTest() override { Chooser::cleanup(); }
};

TreeItemData door()
{
    TreeItemData item(3, fileString("/catalogs/Doors.orvlib"), "Door");
    item.setSelectionPaneName("pane");
    item.setItemImageIndex(4);
    item.setType(1001);
    item.setToolTip("tip");
    return item;
}

} // namespace

TEST_F(ChooserTest, cleanupWithoutAnInstanceDoesNothing)
{
    Chooser::cleanup();
    Chooser::cleanup();
    EXPECT_NE(Chooser::get(), nullptr);
}

TEST_F(ChooserTest, getReturnsOneInstance)
{
    EXPECT_EQ(Chooser::get(), Chooser::get());
}

TEST_F(ChooserTest, nothingIsChosenAtFirst)
{
    EXPECT_TRUE(Chooser::get()->getData() == TreeItemData());
    EXPECT_EQ(Chooser::get()->getData().getId(), -1);
}

TEST_F(ChooserTest, keepsTheWholeItem)
{
    Chooser::get()->setData(door());
    const TreeItemData chosen = Chooser::get()->getData();
    EXPECT_TRUE(chosen == door());
    EXPECT_EQ(chosen.getItemName(), "Door");
    EXPECT_EQ(chosen.getItemImageIndex(), 4);
    EXPECT_EQ(chosen.type(), 1001);
    EXPECT_EQ(chosen.toolTip(), "tip");
}

TEST_F(ChooserTest, handsOutACopy)
{
    Chooser::get()->setData(door());
    TreeItemData copy = Chooser::get()->getData();
    copy.setItemName("Window");
    EXPECT_EQ(Chooser::get()->getData().getItemName(), "Door");
}

TEST_F(ChooserTest, clearDataLeavesNothingBehind)
{
    Chooser::get()->setData(door());
    Chooser::get()->clearData();
    const TreeItemData chosen = Chooser::get()->getData();
    EXPECT_TRUE(chosen == TreeItemData());
    EXPECT_EQ(chosen.getItemName(), "");
    EXPECT_EQ(chosen.toolTip(), "");
    EXPECT_EQ(chosen.getItemImageIndex(), -1);
}

TEST_F(ChooserTest, getAfterCleanupMakesAnEmptyOne)
{
    Chooser::get()->setData(door());
    Chooser::cleanup();
    EXPECT_TRUE(Chooser::get()->getData() == TreeItemData());
}

TEST_F(ChooserTest, threadsThatAskFirstAtOnceGetTheSameInstance)
{
    std::vector<Chooser*> seen(8);
    std::vector<std::thread> threads;
    for (Chooser*& slot : seen)
        threads.emplace_back([&slot] { slot = Chooser::get(); });
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_NE(seen.front(), nullptr);
    EXPECT_EQ(std::count(seen.begin(), seen.end(), seen.front()), 8);
}

TEST_F(ChooserTest, cleanupMayComeWhileAnotherThreadAsks)
{
    std::thread asking([] {
        for (int i = 0; i < 2000; ++i)
            EXPECT_NE(Chooser::get(), nullptr);
    });
    for (int i = 0; i < 2000; ++i)
        Chooser::cleanup();
    asking.join();
}
