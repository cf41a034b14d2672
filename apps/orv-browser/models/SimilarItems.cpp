#include "apps/orv-browser/models/SimilarItems.h"

#include <algorithm>
#include <array>

#include "apps/orv-browser/models/TextFolding.h"

namespace {

constexpr std::size_t kFolderPoints = 4;
constexpr std::size_t kStylePoints = 2;
constexpr std::size_t kMakerPoints = 1;
constexpr std::size_t kMostPoints = kFolderPoints + kStylePoints + kMakerPoints;
constexpr int kBetweenQuestions = 4096; // items

/// Knows, for each folder of each catalog, whether it has the name of the item's own folder, so that no name
/// is compared for an item.
class Judge
{
public:
    Judge(const ItemIndex& index, ItemRef item) : mIndex(index), mItem(index.item(item))
    {
        if (mItem.folder < 0)
            return;
        const std::string wanted = folderName(index.catalogOf(item), mItem.folder);
        for (const auto& catalog : index.catalogs()) {
            std::vector<bool> isSame;
            for (std::size_t folder = 0; folder < catalog->folders().size(); ++folder)
                isSame.push_back(folderName(*catalog, static_cast<int>(folder)) == wanted);
            mIsSame.push_back(std::move(isSame));
        }
    }

    std::size_t points(ItemRef ref) const
    {
        const CatalogContent::Item& other = mIndex.item(ref);
        const bool isSameFolder = mItem.folder >= 0 && other.folder >= 0 &&
                                  mIsSame[ref.catalog][static_cast<std::size_t>(other.folder)];
        const auto isSame = [](std::int32_t left, std::int32_t right) { return left >= 0 && left == right; };
        return (isSameFolder ? kFolderPoints : 0) + (isSame(mItem.style, other.style) ? kStylePoints : 0) +
               (isSame(mItem.maker, other.maker) ? kMakerPoints : 0);
    }

private:
    static std::string folderName(const CatalogContent& catalog, int folder)
    {
        return TextFolding::folded(catalog.folders()[static_cast<std::size_t>(folder)].name);
    }

    const ItemIndex& mIndex;
    const CatalogContent::Item& mItem;
    std::vector<std::vector<bool>> mIsSame; ///< by catalog and folder; empty for an item without a folder
};

} // namespace

std::optional<ItemRef> SimilarItems::refOf(const ItemIndex& index, const fileString& database, long long item)
{
    const int catalog = index.catalogAt(database);
    const int position = catalog < 0 ? -1 : index.catalogs()[static_cast<std::size_t>(catalog)]->itemAt(item);
    if (position < 0)
        return std::nullopt;
    return ItemRef{static_cast<std::uint32_t>(catalog), static_cast<std::uint32_t>(position)};
}

std::vector<ItemRef> SimilarItems::find(const ItemIndex& index, ItemRef item, std::size_t most,
                                        const std::atomic<bool>& isCancelled)
{
    const Judge judge(index, item);
    const std::vector<ItemRef>& all = index.byName();
    const auto here = static_cast<std::size_t>(std::find(all.begin(), all.end(), item) - all.begin());
    std::array<std::vector<ItemRef>, kMostPoints + 1> byPoints;
    const auto judged = [&](std::size_t position) {
        std::vector<ItemRef>& equals = byPoints[judge.points(all[position])];
        if (equals.size() < most)
            equals.push_back(all[position]);
    };
    for (std::size_t step = 1; step < all.size(); ++step) {
        if (here + step < all.size())
            judged(here + step);
        if (step <= here && here < all.size())
            judged(here - step);
        if (byPoints[kMostPoints].size() == most || (step % kBetweenQuestions == 0 && isCancelled))
            break;
    }
    std::vector<ItemRef> found;
    for (std::size_t points = kMostPoints; points > 0; --points)
        found.insert(found.end(), byPoints[points].begin(), byPoints[points].end());
    found.resize(std::min(found.size(), most));
    return found;
}
