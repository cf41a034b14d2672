#pragma once

#include <QListView>

#include "apps/orv-browser/models/ItemQuery.h"

class GalleryModel;
class UserLists;

/// Small pictures of items, as many rows of them as there are, so that it never scrolls itself. Lives on the
/// interface thread.
class SimilarView : public QListView
{
    Q_OBJECT

public:
    /// @param lists outlive the view
    explicit SimilarView(const UserLists& lists, QWidget* parent = nullptr);
    ~SimilarView() override;

    void show(const ItemQuery::Found& found);

    QSize minimumSizeHint() const override { return gridSize(); }

Q_SIGNALS:
    /// The user wants to see an item.
    void chosen(const fileString& database, long long item);

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    void fitHeight();
    void choose(const QModelIndex& index);

    GalleryModel* mItems;
};
