#include "apps/orv-browser/gallery/ItemPreview.h"

#include <QApplication>
#include <QKeyEvent>
#include <QPainter>

#include "apps/orv-browser/gallery/ItemPicture.h"

namespace {

constexpr int kSmallSide = 192;
constexpr int kMargin = 12;
constexpr int kPointerGap = 16;
constexpr double kLargeShare = 0.8; // of the window

} // namespace

ItemPreview::ItemPreview(QWidget* window) : QFrame(window)
{
    setObjectName(QStringLiteral("itemPreview"));
    setFrameShape(QFrame::StyledPanel);
    setAutoFillBackground(true);
    setBackgroundRole(QPalette::Base);
    setFocusPolicy(Qt::ClickFocus);
    hide();
}

void ItemPreview::showItem(const QModelIndex& index)
{
    mIndex = index;
    setAccessibleName(tr("Picture of %1").arg(index.data().toString()));
    show();
    raise();
    update();
}

void ItemPreview::showLarge(const QModelIndex& index)
{
    const QSize room = parentWidget()->size();
    resize(room * kLargeShare);
    move((room.width() - width()) / 2, (room.height() - height()) / 2);
    if (!mIsLarge || !isVisible())
        mFormerFocus = QApplication::focusWidget();
    mIsLarge = true;
    setAttribute(Qt::WA_TransparentForMouseEvents, false);
    showItem(index);
    setFocus();
}

void ItemPreview::showSmall(const QModelIndex& index, const QPoint& globalPosition)
{
    if (mIsLarge && isVisible())
        return;
    mIsLarge = false;
    setAttribute(Qt::WA_TransparentForMouseEvents);
    resize(kSmallSide + 2 * kMargin, kSmallSide + 2 * kMargin + fontMetrics().lineSpacing());
    const QSize room = parentWidget()->size();
    QPoint at = parentWidget()->mapFromGlobal(globalPosition) + QPoint(kPointerGap, kPointerGap);
    if (at.x() + width() > room.width())
        at.rx() -= width() + 2 * kPointerGap;
    at.setY(qBound(0, at.y(), qMax(0, room.height() - height())));
    move(qMax(0, at.x()), at.y());
    showItem(index);
}

void ItemPreview::goAway()
{
    hide();
    if (mIsLarge && mFormerFocus)
        mFormerFocus->setFocus();
    mIsLarge = false;
}

void ItemPreview::paintEvent(QPaintEvent* event)
{
    QFrame::paintEvent(event);
    if (!mIndex.isValid())
        return;
    QPainter painter(this);
    const int line = fontMetrics().lineSpacing();
    const QRect inner = rect().adjusted(kMargin, kMargin, -kMargin, -kMargin);
    ItemPicture::paint(painter, inner.adjusted(0, 0, 0, -line), mIndex, palette());
    painter.setPen(palette().color(QPalette::Text));
    const QRect caption(inner.left(), inner.bottom() - line + 1, inner.width(), line);
    painter.drawText(caption, Qt::AlignCenter | Qt::TextSingleLine,
                     fontMetrics().elidedText(mIndex.data().toString(), Qt::ElideRight, caption.width()));
}

void ItemPreview::keyPressEvent(QKeyEvent* event)
{
    const int key = event->key();
    if (key == Qt::Key_Left || key == Qt::Key_Right || key == Qt::Key_Up || key == Qt::Key_Down)
        Q_EMIT stepAsked(key);
    else
        goAway();
}

void ItemPreview::mousePressEvent(QMouseEvent*)
{
    goAway();
}

void ItemPreview::focusOutEvent(QFocusEvent*)
{
    if (mIsLarge)
        hide();
    mIsLarge = false;
}
