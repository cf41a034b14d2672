// The tree order must be a strict weak order for all names, because sorting is undefined otherwise.
#include <algorithm>
#include <memory>
#include <random>
#include <vector>

#include <QLocale>
#include <QStandardItemModel>

#include <gtest/gtest.h>

#include "OrvLibrary/UI/TreeFolderData.h"
#include "OrvLibrary/UI/TreeItemData.h"
#include "OrvLibrary/host/StringUtils.h"

using Library::TreeData;
using Library::TreeFolderData;
using Library::TreeItemData;

namespace {

const fileString kPath("/catalogs/Doors.orvlib");
constexpr int kNodes = 60;
constexpr int kRounds = 3;

// Parts of names that are difficult to order: letter cases, accents as one or two characters, digit runs,
// leading zeros, ligatures, other alphabets, right-to-left text, digits of other scripts, white space,
// punctuation, characters beyond the base plane, and bytes that are not UTF-8.
const char* const kPieces[] = {"a",
                               "A",
                               "b",
                               "B",
                               "z",
                               "Z",
                               "\xC3\xA4",
                               "\xC3\x84",
                               "a\xCC\x88",
                               "\xC3\xB6",
                               "\xC3\xA5",
                               "\xC3\x9F",
                               "ss",
                               "\xC5\x93",
                               "oe",
                               "i",
                               "I",
                               "\xC4\xB1",
                               "\xC4\xB0",
                               "ch",
                               "ll",
                               "\xC3\xB1",
                               "1",
                               "2",
                               "9",
                               "10",
                               "007",
                               "7",
                               "00",
                               " ",
                               "-",
                               "_",
                               ".",
                               "\xD0\xB0",
                               "\xD0\x90",
                               "\xCE\xB1",
                               "\xCE\x91",
                               "\xCF\x82",
                               "\xCF\x83",
                               "\xD7\x90",
                               "\xD8\xA7",
                               "\xD9\xA1",
                               "\xE4\xB8\xAD",
                               "\xE3\x81\x82",
                               "\xE3\x82\xA2",
                               "\xF0\x9F\x9A\xAA",
                               "\xE2\x80\x8B",
                               "\xFF",
                               "\xC3",
                               "e\xCC\x81",
                               "\xC3\xA9",
                               "e"};

std::string randomName(std::mt19937& random)
{
    std::string name;
    for (int pieces = std::uniform_int_distribution<int>(0, 4)(random); pieces > 0; --pieces)
        name += kPieces[std::uniform_int_distribution<std::size_t>(0, std::size(kPieces) - 1)(random)];
    return name;
}

using Nodes = std::vector<std::unique_ptr<TreeData>>;

Nodes randomNodes(std::mt19937& random)
{
    Nodes nodes;
    for (int i = 0; i < kNodes; ++i) {
        if (i % 4 == 0)
            nodes.push_back(std::make_unique<TreeFolderData>(i, kPath, randomName(random)));
        else
            nodes.push_back(std::make_unique<TreeItemData>(i, kPath, randomName(random)));
    }
    return nodes;
}

using Table = std::vector<std::vector<bool>>;

Table lessTable(const Nodes& nodes)
{
    Table less(nodes.size(), std::vector<bool>(nodes.size()));
    for (std::size_t i = 0; i < nodes.size(); ++i) {
        for (std::size_t j = 0; j < nodes.size(); ++j)
            less[i][j] = *nodes[i] < *nodes[j];
    }
    return less;
}

void expectStrictWeakOrder(const Nodes& nodes)
{
    const Table less = lessTable(nodes);
    const auto alike = [&less](std::size_t i, std::size_t j) { return !less[i][j] && !less[j][i]; };
    const auto name = [&nodes](std::size_t i) { return nodes[i]->getItemName(); };
    for (std::size_t i = 0; i < nodes.size(); ++i) {
        ASSERT_FALSE(less[i][i]) << name(i);
        for (std::size_t j = 0; j < nodes.size(); ++j) {
            ASSERT_FALSE(less[i][j] && less[j][i]) << name(i) << " | " << name(j);
            for (std::size_t k = 0; k < nodes.size(); ++k) {
                ASSERT_TRUE(!less[i][j] || !less[j][k] || less[i][k])
                    << name(i) << " | " << name(j) << " | " << name(k);
                ASSERT_TRUE(!alike(i, j) || !alike(j, k) || alike(i, k))
                    << name(i) << " | " << name(j) << " | " << name(k);
            }
        }
    }
}

// The operator must give the same results as the plain comparison of the names.
void expectOrderOfTheNames(const Nodes& nodes)
{
    for (const auto& left : nodes) {
        for (const auto& right : nodes) {
            const int order = TreeData::treeOrderComparatorStatic(left->isLeaf(), right->isLeaf(),
                                                                  left->getItemName(), right->getItemName());
            ASSERT_EQ(*left < *right, order < 0) << left->getItemName() << " | " << right->getItemName();
        }
    }
}

class TreeOrder : public testing::TestWithParam<const char*>
{
protected:
    TreeOrder() { QLocale::setDefault(QLocale(GetParam())); }
    ~TreeOrder() override { QLocale::setDefault(QLocale::system()); }
};

} // namespace

TEST_P(TreeOrder, isAStrictWeakOrder)
{
    std::mt19937 random(20261121);
    for (int round = 0; round < kRounds; ++round)
        expectStrictWeakOrder(randomNodes(random));
}

TEST_P(TreeOrder, agreesWithTheComparisonOfTheNames)
{
    std::mt19937 random(4711);
    for (int round = 0; round < kRounds; ++round)
        expectOrderOfTheNames(randomNodes(random));
}

TEST_P(TreeOrder, sortsAModelAscending)
{
    std::mt19937 random(17);
    QStandardItemModel model;
    for (int i = 0; i < 2000; ++i)
        model.appendRow(new TreeItemData(i, kPath, randomName(random)));
    model.sort(0);
    for (int row = 1; row < model.rowCount(); ++row)
        ASSERT_FALSE(*model.item(row) < *model.item(row - 1)) << row;
}

INSTANTIATE_TEST_SUITE_P(Languages, TreeOrder,
                         testing::Values("C", "en_US", "de_DE", "sv_SE", "tr_TR", "es_ES", "cs_CZ", "ja_JP",
                                         "ar_EG", "el_GR"),
                         [](const auto& language) { return std::string(language.param); });

TEST(TreeOrderOfOneTree, followsAChangeOfTheLanguage)
{
    const TreeItemData zebra(1, kPath, "z");
    const TreeItemData umlaut(2, kPath, "\xC3\xA4");
    QLocale::setDefault(QLocale("de_DE"));
    EXPECT_TRUE(umlaut < zebra);
    QLocale::setDefault(QLocale("sv_SE"));
    EXPECT_TRUE(zebra < umlaut);
    QLocale::setDefault(QLocale::system());
}
