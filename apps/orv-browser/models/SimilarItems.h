#pragma once

#include <atomic>
#include <cstddef>
#include <optional>
#include <vector>

#include "apps/orv-browser/models/ItemIndex.h"

/// Which items are like another one. Any thread; 200,000 items take some milliseconds.
namespace SimilarItems {

/// Where an item of a catalog stands in an index; none when it is not there.
std::optional<ItemRef> refOf(const ItemIndex& index, const fileString& database, long long item);

/// An item counts 4 when its folder is named as that of the other one, in whatever catalog, 2 for the same
/// style and 1 for the same maker. Those that count most come first, and among equal ones those whose names
/// stand nearest in the alphabet. Items that count nothing are not similar.
/// @param isCancelled asked now and then; a cancelled search finds nothing of use
std::vector<ItemRef> find(const ItemIndex& index, ItemRef item, std::size_t most,
                          const std::atomic<bool>& isCancelled);

} // namespace SimilarItems
