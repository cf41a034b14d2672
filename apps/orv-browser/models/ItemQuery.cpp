// How a query is asked: what is the same for a whole catalog (does the place hold it, does the filter let it
// through, which of its folders hold a word) is found out once per catalog; then one pass over all items in
// the order of their names takes those that pass, and counts for each choice what it would leave.
#include "apps/orv-browser/models/ItemQuery.h"

#include <algorithm>
#include <array>
#include <utility>

#include "apps/orv-browser/models/TextFolding.h"

namespace {

constexpr int kItemsPerQuestion = 4096;

using ByFacet = std::array<bool, ItemQuery::kFacetCount>;

/// A word of the search and where in one catalog it stands outside the items.
struct Word
{
    std::string text;
    bool isInCatalogName = false;
    std::vector<bool> folders; ///< by position: whether this folder or one above it holds the word
};

/// Everything that is the same for all items of one catalog.
struct CatalogView
{
    const CatalogContent* content = nullptr;
    bool isInPlace = false;
    bool isLetThrough = false; ///< by the stored filter
    bool isChosen = false;     ///< by the choice of a catalog
    int firstFolder = -1;      ///< of the place; -1 for the whole catalog
    int endFolder = -1;
    std::vector<Word> words;
    std::vector<char> favourites; ///< by item; empty when there are none
    std::vector<char> newItems;   ///< likewise
};

bool holds(const std::map<std::int32_t, std::string>& names, std::int32_t number, const std::string& word)
{
    const auto name = names.find(number);
    return name != names.end() && name->second.find(word) != std::string::npos;
}

bool isCategoryOf(const Place& place, const CatalogContent& content)
{
    switch (place.kind) {
    case Place::Kind::Category:
        return place.category == content.category();
    case Place::Kind::Catalog:
    case Place::Kind::Folder:
        return place.database == content.database();
    default:
        return true;
    }
}

Word wordIn(const CatalogContent& content, const std::string& text)
{
    Word word{text, false, {}};
    word.isInCatalogName = TextFolding::folded(content.name().toStdString()).find(text) != std::string::npos;
    for (const CatalogContent::Folder& folder : content.folders()) {
        const bool isAbove = folder.parent >= 0 && word.folders[static_cast<std::size_t>(folder.parent)];
        word.folders.push_back(isAbove || TextFolding::folded(folder.name).find(text) != std::string::npos);
    }
    return word;
}

/// One asking of a query; see above.
class Asking
{
public:
    Asking(const ItemQuery& query, std::shared_ptr<const ItemIndex> index) : mQuery(query)
    {
        mFound.index = std::move(index);
        mFound.news = query.news;
        for (const auto& content : mFound.index->catalogs())
            mViews.push_back(viewOf(*content));
        for (const CatalogView& view : mViews)
            mFound.unreadable += view.isInPlace && view.isLetThrough && !view.content->problem().isEmpty();
    }

    void take(ItemRef ref)
    {
        const CatalogView& view = mViews[ref.catalog];
        const CatalogContent::Item& item = view.content->items()[ref.item];
        if (!holdsAllWords(view, item))
            return;
        ++mFound.everywhere;
        if (!view.isInPlace || !view.isLetThrough || !isInFolder(view, item))
            return;
        const Marks marks{!view.favourites.empty() && view.favourites[ref.item],
                          !view.newItems.empty() && view.newItems[ref.item]};
        if ((mQuery.place.kind == Place::Kind::Favourites && !marks.isFavourite) ||
            (mQuery.place.kind == Place::Kind::News && !marks.isNew))
            return;
        const ByFacet passes = {!mQuery.style || item.style == *mQuery.style,
                                !mQuery.maker || item.maker == *mQuery.maker, view.isChosen,
                                !mQuery.onlyFavourites || marks.isFavourite, !mQuery.onlyNew || marks.isNew};
        count(ref, item, marks, passes);
    }

    ItemQuery::Found found() { return std::move(mFound); }

private:
    struct Marks
    {
        bool isFavourite;
        bool isNew;
    };

    CatalogView viewOf(const CatalogContent& content) const
    {
        CatalogView view;
        view.content = &content;
        view.isInPlace = isCategoryOf(mQuery.place, content);
        view.isLetThrough = !mQuery.filter || mQuery.filter->count(content.id()) != 0;
        view.isChosen = !mQuery.catalog || *mQuery.catalog == content.database();
        if (mQuery.place.kind == Place::Kind::Folder && view.isInPlace) {
            view.firstFolder = content.folderAt(mQuery.place.folder);
            view.isInPlace = view.firstFolder >= 0;
            if (view.isInPlace)
                view.endFolder = content.folders()[static_cast<std::size_t>(view.firstFolder)].end;
        }
        for (const std::string& term : mQuery.terms)
            view.words.push_back(wordIn(content, term));
        for (const auto& [database, id] : mQuery.favourites)
            if (database == content.database())
                mark(content, id, view.favourites);
        markNew(content, view.newItems);
        return view;
    }

    void markNew(const CatalogContent& content, std::vector<char>& marks) const
    {
        if (!mQuery.news)
            return;
        const auto news = mQuery.news->catalogs.find(content.database());
        if (news == mQuery.news->catalogs.end())
            return;
        for (const auto& entry : news->second)
            mark(content, entry.first, marks);
    }

    static void mark(const CatalogContent& content, long long id, std::vector<char>& marks)
    {
        const int item = content.itemAt(id);
        if (item < 0)
            return;
        marks.resize(content.items().size(), 0);
        marks[static_cast<std::size_t>(item)] = 1;
    }

    static bool isInFolder(const CatalogView& view, const CatalogContent::Item& item)
    {
        return view.firstFolder < 0 || (item.folder >= view.firstFolder && item.folder < view.endFolder);
    }

    bool holdsAllWords(const CatalogView& view, const CatalogContent::Item& item) const
    {
        const std::string_view text = view.content->foldedText(item);
        return std::all_of(view.words.begin(), view.words.end(), [&](const Word& word) {
            return text.find(word.text) != std::string_view::npos || word.isInCatalogName ||
                   (item.folder >= 0 && word.folders[static_cast<std::size_t>(item.folder)]) ||
                   holds(mQuery.styleNames, item.style, word.text) ||
                   holds(mQuery.makerNames, item.maker, word.text);
        });
    }

    void count(ItemRef ref, const CatalogContent::Item& item, Marks marks, const ByFacet& passes)
    {
        const auto refusing = std::count(passes.begin(), passes.end(), false);
        // The numbers beside a choice count the items as if only that choice had not been made.
        const auto isOpen = [&](ItemQuery::Facet facet) {
            return refusing == 0 || (refusing == 1 && !passes[facet]);
        };
        if (isOpen(ItemQuery::kStyleFacet) && item.style != CatalogContent::kNone)
            ++mFound.styles[item.style];
        if (isOpen(ItemQuery::kMakerFacet) && item.maker != CatalogContent::kNone)
            ++mFound.makers[item.maker];
        if (isOpen(ItemQuery::kCatalogFacet))
            ++mFound.catalogs[ref.catalog];
        if (isOpen(ItemQuery::kFavouriteFacet) && marks.isFavourite)
            ++mFound.favourites;
        if (isOpen(ItemQuery::kNewFacet) && marks.isNew)
            ++mFound.newItems;
        if (refusing == 0)
            mFound.items.push_back(ref);
    }

    const ItemQuery& mQuery;
    ItemQuery::Found mFound;
    std::vector<CatalogView> mViews;
};

/// Those of the recent items that were found, in the order in which they were chosen.
void keepRecent(const std::vector<std::pair<fileString, long long>>& recent, ItemQuery::Found& found)
{
    std::vector<ItemRef> kept;
    for (const auto& [database, id] : recent) {
        const int catalog = found.index->catalogAt(database);
        const int item =
            catalog < 0 ? -1 : found.index->catalogs()[static_cast<std::size_t>(catalog)]->itemAt(id);
        const ItemRef ref{static_cast<std::uint32_t>(catalog), static_cast<std::uint32_t>(item)};
        if (item >= 0 && std::find(found.items.begin(), found.items.end(), ref) != found.items.end())
            kept.push_back(ref);
    }
    found.items = kept;
}

/// The place of each number in the order of the names.
std::map<std::int32_t, int> ranksOf(const std::map<std::int32_t, std::string>& names)
{
    std::vector<std::pair<std::string, std::int32_t>> ordered;
    for (const auto& [number, name] : names)
        ordered.emplace_back(name, number);
    std::sort(ordered.begin(), ordered.end());
    std::map<std::int32_t, int> ranks;
    for (const auto& entry : ordered)
        ranks.emplace(entry.second, static_cast<int>(ranks.size()));
    return ranks;
}

/// Numbers without a name come last.
int rank(const std::map<std::int32_t, int>& ranks, std::int32_t number)
{
    const auto found = ranks.find(number);
    return found == ranks.end() ? static_cast<int>(ranks.size()) : found->second;
}

void sort(const ItemQuery& query, ItemQuery::Found& found)
{
    const ItemIndex& index = *found.index;
    const auto by = [&](auto key) {
        std::stable_sort(found.items.begin(), found.items.end(),
                         [&](ItemRef left, ItemRef right) { return key(left) < key(right); });
    };
    if (query.order == ItemQuery::Order::Catalog)
        by([](ItemRef ref) { return static_cast<int>(ref.catalog); });
    else if (query.order == ItemQuery::Order::Style)
        by([&, ranks = ranksOf(query.styleNames)](ItemRef ref) {
            return rank(ranks, index.item(ref).style);
        });
    else if (query.order == ItemQuery::Order::Maker)
        by([&, ranks = ranksOf(query.makerNames)](ItemRef ref) {
            return rank(ranks, index.item(ref).maker);
        });
    if (query.isDescending)
        std::reverse(found.items.begin(), found.items.end());
}

} // namespace

ItemQuery::Found ItemQuery::ask(std::shared_ptr<const ItemIndex> index,
                                const std::atomic<bool>& isCancelled) const
{
    const std::vector<ItemRef>& all = index->byName();
    Asking asking(*this, index);
    for (std::size_t i = 0; i < all.size(); ++i) {
        if (i % kItemsPerQuestion == 0 && isCancelled)
            break;
        asking.take(all[i]);
    }
    Found found = asking.found();
    if (place.kind == Place::Kind::Recent)
        keepRecent(recent, found);
    else
        sort(*this, found);
    return found;
}

bool ItemQuery::isRestricted() const
{
    return !terms.empty() || style || maker || catalog || onlyFavourites || onlyNew || filter;
}
