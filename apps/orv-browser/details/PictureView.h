#pragma once

#include <QPersistentModelIndex>
#include <QWidget>

/// Shows the picture of one item as large as the space allows. Lives on the interface thread.
class PictureView : public QWidget
{
    Q_OBJECT

public:
    explicit PictureView(QWidget* parent = nullptr);

    /// @param index of a `GalleryModel`. The view is empty if it is invalid or its row is removed.
    void show(const QModelIndex& index);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QPersistentModelIndex mIndex;
};
