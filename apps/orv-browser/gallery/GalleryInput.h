#pragma once

#include <QObject>
#include <QPersistentModelIndex>
#include <QTimer>

class QAbstractItemView;
class QMouseEvent;

/// Handles the keys, the wheel and the mouse in the grid and the list, as far as views do not do so
/// themselves. Lives as long as its view.
class GalleryInput : public QObject
{
    Q_OBJECT

public:
    explicit GalleryInput(QAbstractItemView& view);

    bool eventFilter(QObject* watched, QEvent* event) override;

Q_SIGNALS:
    /// The user turns the wheel while pressing Ctrl.
    /// @param steps positive for larger pictures
    void zoomAsked(int steps);
    /// The user wants a large picture of the current item.
    void previewAsked();
    /// The pointer rests on an item.
    void hovered(const QModelIndex& index);
    /// The pointer has left that item.
    void hoverEnded();
    /// The user clicked the star of an item.
    void starClicked(const QModelIndex& index);

private:
    void follow(const QPoint& position);
    bool clickStar(const QMouseEvent& event);

    QAbstractItemView& mView;
    QTimer mRest;
    QPersistentModelIndex mUnderPointer;
    bool mIsShown = false;
};
