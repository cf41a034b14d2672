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

/// Which items to show: those of a place that hold every word of a search and pass every choice. A value that
/// is made on the interface thread and asked on another one.
struct ItemQuery
{
    enum class Order
    {
        Name,
        Catalog,
        Style,
        Maker
    };
    /// One choice of the bar above the gallery.
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
    std::vector<std::string> terms; ///< folded; an item must hold each one somewhere
    std::optional<std::int32_t> style;
    std::optional<std::int32_t> maker;
    std::optional<fileString> catalog;
    bool onlyFavourites = false;
    bool onlyNew = false;
    /// Ids of the catalogs that a stored filter lets through; none for no filter.
    std::optional<std::set<std::string>> filter;
    Order order = Order::Name;
    bool isDescending = false;

    std::map<std::int32_t, std::string> styleNames; ///< folded, by number
    std::map<std::int32_t, std::string> makerNames;
    std::vector<std::pair<fileString, long long>> favourites; ///< sorted
    std::vector<std::pair<fileString, long long>> recent;     ///< the last one first
    std::shared_ptr<const NewItems> news;                     ///< null for none

    /// What was found, and how many items each choice would leave.
    struct Found
    {
        std::shared_ptr<const ItemIndex> index;
        std::shared_ptr<const NewItems> news; ///< as the query had them
        std::vector<ItemRef> items;
        std::map<std::int32_t, int> styles;
        std::map<std::int32_t, int> makers;
        std::map<std::uint32_t, int> catalogs; ///< by position in the index
        int favourites = 0;
        int newItems = 0;
        int everywhere = 0; ///< items that hold the words, whatever the place and the choices are
        int unreadable = 0; ///< catalogs of the place that cannot be read
    };

    /// @param isCancelled asked now and then; a cancelled search finds nothing of use
    Found ask(std::shared_ptr<const ItemIndex> index, const std::atomic<bool>& isCancelled) const;
    /// Whether anything but the place restricts the items.
    bool isRestricted() const;
};
