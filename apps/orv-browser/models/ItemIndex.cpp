#include "apps/orv-browser/models/ItemIndex.h"

#include <algorithm>
#include <cstring>
#include <utility>

#include <QCollator>

namespace {

/// The order of names in the user's language: numbers by their value, letters without regard to their case.
QCollator nameOrder()
{
    const QLocale locale;
    QCollator order(locale.language() == QLocale::C ? QLocale(QLocale::English) : locale);
    order.setNumericMode(true);
    order.setCaseSensitivity(Qt::CaseInsensitive);
    return order;
}

} // namespace

ItemIndex::ItemIndex(Catalogs catalogs) : mCatalogs(std::move(catalogs))
{
    const QCollator order = nameOrder();
    std::vector<std::pair<QCollatorSortKey, ItemRef>> keyed;
    std::size_t count = 0;
    for (const auto& catalog : mCatalogs)
        count += catalog->items().size();
    keyed.reserve(count);
    for (std::uint32_t i = 0; i < mCatalogs.size(); ++i)
        for (std::uint32_t row = 0; row < mCatalogs[i]->items().size(); ++row)
            keyed.emplace_back(order.sortKey(name({i, row})), ItemRef{i, row});
    std::stable_sort(keyed.begin(), keyed.end(),
                     [](const auto& left, const auto& right) { return left.first.compare(right.first) < 0; });
    mByName.reserve(count);
    for (const auto& entry : keyed)
        mByName.push_back(entry.second);
}

int ItemIndex::catalogAt(const fileString& database) const
{
    for (std::size_t i = 0; i < mCatalogs.size(); ++i)
        if (mCatalogs[i]->database() == database)
            return static_cast<int>(i);
    return -1;
}

std::shared_ptr<const CatalogContent> ItemIndex::find(const fileString& database) const
{
    const int position = catalogAt(database);
    return position < 0 ? nullptr : mCatalogs[static_cast<std::size_t>(position)];
}
