#include "apps/orv-browser/models/ItemSearch.h"

#include "apps/orv-browser/models/Background.h"

ItemSearch::ItemSearch(QObject* parent) : QObject(parent)
{
    mPool.setMaxThreadCount(1);
}

ItemSearch::~ItemSearch()
{
    end();
    mPool.waitForDone();
}

void ItemSearch::end()
{
    if (mCancelled)
        *mCancelled = true;
    mPool.clear();
}

void ItemSearch::ask(const ItemQuery& query, const std::shared_ptr<const ItemIndex>& index)
{
    end();
    const auto cancelled = std::make_shared<std::atomic<bool>>(false);
    mCancelled = cancelled;
    mIsAsking = true;
    Background::run(
        mPool, this, [query, index, cancelled] { return query.ask(index, *cancelled); },
        [this, cancelled](const ItemQuery::Found& result) {
            if (*cancelled)
                return;
            mIsAsking = false;
            Q_EMIT found(result);
        });
}
