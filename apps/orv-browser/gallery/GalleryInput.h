#pragma once

#include <QObject>
#include <QPersistentModelIndex>
#include <QTimer>

class QAbstractItemView;
class QMouseEvent;

/// What keys, wheel and mouse mean in the grid and in the list alike, beyond what every view knows. Lives as
/// long as the view that it listens to.
class GalleryInput : public QObject
{
    Q_OBJECT

public:
    explicit GalleryInput(QAbstractItemView& view);

    bool eventFilter(QObject* watched, QEvent* event) override;

Q_SIGNALS:
    /// The user turns the wheel with Ctrl held.
    /// @param steps positive for larger
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
