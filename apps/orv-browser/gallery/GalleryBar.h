#pragma once

#include <QWidget>

#include "apps/orv-browser/models/ItemQuery.h"

class Breadcrumbs;
class QComboBox;
class QLabel;
class QSlider;
class QToolButton;

/// The line above the items: their place and number, the choice between grid and list, and the size of the
/// pictures.
class GalleryBar : public QWidget
{
    Q_OBJECT

public:
    static constexpr int kLeastSide = 48; ///< smallest side of a picture in pixels
    static constexpr int kMostSide = 256;

    explicit GalleryBar(QWidget* parent = nullptr);

    /// The tools; owned by the widget that lays them out.
    QWidget* tools() const { return mTools; }
    Breadcrumbs& breadcrumbs() { return *mBreadcrumbs; }
    void setCount(int items);
    /// The size of the pictures in pixels.
    int side() const;
    void setSide(int side);
    bool isGrid() const;
    void setGrid(bool isGrid);
    ItemQuery::Order order() const;
    bool isDescending() const;
    void setOrder(ItemQuery::Order order, bool isDescending);

Q_SIGNALS:
    void sideChanged(int side);
    void gridChanged(bool isGrid);
    void orderChanged();

private:
    QToolButton* addButton(const QString& name, const QString& accessibleName);

    Breadcrumbs* mBreadcrumbs;
    QLabel* mCount;
    QWidget* mTools;
    QComboBox* mOrder;
    QToolButton* mDescending;
    QToolButton* mGrid;
    QToolButton* mList;
    QSlider* mSide;
};
