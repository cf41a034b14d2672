#include "apps/orv-browser/gallery/GalleryInput.h"

#include <QAbstractItemView>
#include <QKeyEvent>
#include <QListView>
#include <QMouseEvent>
#include <QWheelEvent>

#include "apps/orv-browser/gallery/GalleryDelegate.h"

namespace {

constexpr int kRestMilliseconds = 500;

} // namespace

GalleryInput::GalleryInput(QAbstractItemView& view) : QObject(&view), mView(view)
{
    mRest.setSingleShot(true);
    mRest.setInterval(kRestMilliseconds);
    connect(&mRest, &QTimer::timeout, this, [this] {
        mIsShown = mUnderPointer.isValid();
        if (mIsShown)
            Q_EMIT hovered(mUnderPointer);
    });
    view.setMouseTracking(true);
    view.installEventFilter(this);
    view.viewport()->installEventFilter(this);
}

bool GalleryInput::eventFilter(QObject* watched, QEvent* event)
{
    switch (event->type()) {
    case QEvent::KeyPress: {
        const auto& key = dynamic_cast<QKeyEvent&>(*event);
        if (watched == &mView && key.key() == Qt::Key_Space && key.modifiers() == Qt::NoModifier) {
            Q_EMIT previewAsked();
            return true;
        }
        return false;
    }
    case QEvent::Wheel: {
        const auto& wheel = dynamic_cast<QWheelEvent&>(*event);
        if (watched != mView.viewport() || !(wheel.modifiers() & Qt::ControlModifier))
            return false;
        if (wheel.angleDelta().y() != 0)
            Q_EMIT zoomAsked(wheel.angleDelta().y() > 0 ? 1 : -1);
        return true;
    }
    case QEvent::MouseMove:
        if (watched == mView.viewport())
            follow(dynamic_cast<QMouseEvent&>(*event).pos());
        return false;
    case QEvent::Leave:
        follow(QPoint(-1, -1));
        return false;
    case QEvent::MouseButtonPress:
        follow(QPoint(-1, -1));
        return watched == mView.viewport() && clickStar(dynamic_cast<QMouseEvent&>(*event));
    default:
        return false;
    }
}

void GalleryInput::follow(const QPoint& position)
{
    const QModelIndex index = mView.indexAt(position);
    if (mUnderPointer.isValid() && index == mUnderPointer)
        return;
    if (mIsShown)
        Q_EMIT hoverEnded();
    mIsShown = false;
    mUnderPointer = index;
    if (index.isValid())
        mRest.start();
    else
        mRest.stop();
}

bool GalleryInput::clickStar(const QMouseEvent& event)
{
    const QModelIndex index = mView.indexAt(event.pos());
    const bool isGrid = qobject_cast<QListView*>(&mView) != nullptr;
    if (!isGrid || !index.isValid() || event.button() != Qt::LeftButton ||
        !GalleryDelegate::starArea(mView.visualRect(index), mView.layoutDirection()).contains(event.pos()))
        return false;
    Q_EMIT starClicked(index);
    return true;
}
