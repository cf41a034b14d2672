#pragma once

#include <atomic>
#include <memory>

#include <QObject>
#include <QThreadPool>

#include "apps/orv-browser/models/ItemQuery.h"

/// Runs queries on another thread. A new query cancels the one before. Lives on the interface thread.
class ItemSearch : public QObject
{
    Q_OBJECT

public:
    explicit ItemSearch(QObject* parent = nullptr);
    /// Cancels the current query and waits for it.
    ~ItemSearch() override;

    void ask(const ItemQuery& query, const std::shared_ptr<const ItemIndex>& index);
    bool isAsking() const { return mIsAsking; }

Q_SIGNALS:
    /// The result of the last query. Results of earlier ones are dropped.
    void found(const ItemQuery::Found& found);

private:
    void end();

    QThreadPool mPool;
    std::shared_ptr<std::atomic<bool>> mCancelled;
    bool mIsAsking = false;
};
