#pragma once

#include <QStyledItemDelegate>

/// Paints the items of the gallery: in the grid a picture with the name below it and the star of a favourite;
/// in the list a small picture before the name. Lives on the interface thread.
class GalleryDelegate : public QStyledItemDelegate
{
    Q_OBJECT

public:
    /// @param isGrid true for the grid, false for the list
    GalleryDelegate(bool isGrid, QObject* parent);

    /// The side of the picture in pixels.
    void setSide(int side) { mSide = side; }
    int side() const { return mSide; }
    /// The size of a tile around such a picture.
    QSize tileSize(const QWidget& view) const;
    /// The part of a tile where a click changes the star.
    static QRect starArea(const QRect& tile, Qt::LayoutDirection direction);

    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override;
    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override;

    /// Paints a name in two lines with the pen that is set. If it does not fit, it ends with an ellipsis.
    static void paintName(QPainter& painter, const QFont& font, const QRect& area, const QString& name);

private:
    void paintTile(QPainter& painter, const QStyleOptionViewItem& option, const QModelIndex& index) const;

    bool mIsGrid;
    int mSide = 128;
};
