#pragma once

#include <atomic>
#include <memory>

#include <QObject>
#include <QThreadPool>

#include "apps/orv-browser/models/ItemQuery.h"

/// Finds similar items off the interface thread; a new question ends the one before. Lives on the interface
/// thread.
class SimilarSearch : public QObject
{
    Q_OBJECT

public:
    explicit SimilarSearch(QObject* parent = nullptr);
    /// Ends the search that is under way and waits for it.
    ~SimilarSearch() override;

    /// Asks for the items that are like one of them. The same question is not asked again.
    void ask(const std::shared_ptr<const ItemIndex>& index, const fileString& database, long long item);

Q_SIGNALS:
    /// The items that the last question found. Results of earlier questions are never reported.
    void found(const ItemQuery::Found& found);

private:
    void end();

    QThreadPool mPool;
    std::shared_ptr<std::atomic<bool>> mCancelled;
    std::shared_ptr<const ItemIndex> mIndex; ///< of the last question
    fileString mDatabase;
    long long mItem = -1;
};
