#include "apps/orv-browser/details/SimilarSearch.h"

#include "apps/orv-browser/models/Background.h"
#include "apps/orv-browser/models/SimilarItems.h"

namespace {

constexpr std::size_t kMost = 12;

} // namespace

SimilarSearch::SimilarSearch(QObject* parent) : QObject(parent)
{
    mPool.setMaxThreadCount(1);
}

SimilarSearch::~SimilarSearch()
{
    end();
    mPool.waitForDone();
}

void SimilarSearch::end()
{
    if (mCancelled)
        *mCancelled = true;
    mPool.clear();
}

void SimilarSearch::ask(const std::shared_ptr<const ItemIndex>& index, const fileString& database,
                        long long item)
{
    if (index == mIndex && database == mDatabase && item == mItem)
        return;
    mIndex = index;
    mDatabase = database;
    mItem = item;
    end();
    const auto cancelled = std::make_shared<std::atomic<bool>>(false);
    mCancelled = cancelled;
    Background::run(
        mPool, this,
        [index, database, item, cancelled] {
            ItemQuery::Found result;
            result.index = index;
            if (const auto ref = SimilarItems::refOf(*index, database, item))
                result.items = SimilarItems::find(*index, *ref, kMost, *cancelled);
            return result;
        },
        [this, cancelled](const ItemQuery::Found& result) {
            if (!*cancelled)
                Q_EMIT found(result);
        });
}
