#pragma once

#include <atomic>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "apps/orv-browser/models/ItemIndex.h"
#include "apps/orv-browser/models/NewItems.h"
#include "apps/orv-browser/models/Place.h"

/// Selects the items to show: those of a place that contain every word of a search and match every choice. A
/// plain value, made on the interface thread and run on another one.
struct ItemQuery
{
    enum class Order
    {
        Name,
        Catalog,
        Style,
        Maker
    };
    /// A choice in the bar above the gallery.
    enum Facet
    {
        kStyleFacet,
        kMakerFacet,
        kCatalogFacet,
        kFavouriteFacet,
        kNewFacet,
        kFacetCount
    };

    Place place;
    std::vector<std::string> terms; ///< folded words; an item must contain all of them
    std::optional<std::int32_t> style;
    std::optional<std::int32_t> maker;
    std::optional<fileString> catalog;
    bool onlyFavourites = false;
    bool onlyNew = false;
    /// The ids of the catalogs in the current filter; empty if there is no filter.
    std::optional<std::set<std::string>> filter;
    Order order = Order::Name;
    bool isDescending = false;

    std::map<std::int32_t, std::string> styleNames; ///< folded, by number
    std::map<std::int32_t, std::string> makerNames;
    std::vector<std::pair<fileString, long long>> favourites; ///< sorted
    std::vector<std::pair<fileString, long long>> recent;     ///< the latest first
    std::shared_ptr<const NewItems> news;                     ///< null for none

    /// The found items, and the number of items that each choice would leave.
    struct Found
    {
        std::shared_ptr<const ItemIndex> index;
        std::shared_ptr<const NewItems> news; ///< as the query had them
        std::vector<ItemRef> items;
        std::map<std::int32_t, int> styles;
        std::map<std::int32_t, int> makers;
        std::map<std::uint32_t, int> catalogs; ///< by index of the catalog
        int favourites = 0;
        int newItems = 0;
        int everywhere = 0; ///< items with the words in all places, without the choices
        int unreadable = 0; ///< unreadable catalogs of the place
    };

    /// @param isCancelled checked from time to time; the result of a cancelled search is not usable
    Found ask(std::shared_ptr<const ItemIndex> index, const std::atomic<bool>& isCancelled) const;
    /// Whether anything except the place restricts the items.
    bool isRestricted() const;
};
