#pragma once

#include <atomic>
#include <memory>

#include <QObject>
#include <QThreadPool>

#include "apps/orv-browser/models/ItemQuery.h"

/// Asks queries off the interface thread, one after the other; a new one ends the one before. Lives on the
/// interface thread.
class ItemSearch : public QObject
{
    Q_OBJECT

public:
    explicit ItemSearch(QObject* parent = nullptr);
    /// Ends the query that is under way and waits for it.
    ~ItemSearch() override;

    void ask(const ItemQuery& query, const std::shared_ptr<const ItemIndex>& index);
    bool isAsking() const { return mIsAsking; }

Q_SIGNALS:
    /// What the last query has found; what an earlier one would have found is never told.
    void found(const ItemQuery::Found& found);

private:
    void end();

    QThreadPool mPool;
    std::shared_ptr<std::atomic<bool>> mCancelled;
    bool mIsAsking = false;
};
