#pragma once

#include <QPersistentModelIndex>
#include <QWidget>

/// The picture of one item of the gallery, as large as there is room. Lives on the interface thread.
class PictureView : public QWidget
{
    Q_OBJECT

public:
    explicit PictureView(QWidget* parent = nullptr);

    /// @param index of a `GalleryModel`; the view is empty when it is invalid or its row leaves
    void show(const QModelIndex& index);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QPersistentModelIndex mIndex;
};
