#include "apps/orv-browser/search/FlowLayout.h"

#include <QStyle>
#include <QWidget>

namespace {

constexpr int kGap = 6; // pixels

} // namespace

FlowLayout::FlowLayout(QWidget* parent) : QLayout(parent)
{
    setContentsMargins(0, 0, 0, 0);
}

FlowLayout::~FlowLayout()
{
    qDeleteAll(mItems);
}

QLayoutItem* FlowLayout::takeAt(int index)
{
    return index >= 0 && index < mItems.size() ? mItems.takeAt(index) : nullptr;
}

void FlowLayout::setGeometry(const QRect& area)
{
    QLayout::setGeometry(area);
    arrange(area, true);
}

QSize FlowLayout::minimumSize() const
{
    QSize size;
    for (const QLayoutItem* item : mItems)
        size = size.expandedTo(item->minimumSize());
    return size;
}

/// @return the height of all lines
int FlowLayout::arrange(const QRect& area, bool isMoving) const
{
    const Qt::LayoutDirection direction =
        parentWidget() ? parentWidget()->layoutDirection() : Qt::LeftToRight;
    QPoint at = area.topLeft();
    int lineHeight = 0;
    for (QLayoutItem* item : mItems) {
        const QSize size =
            item->sizeHint().boundedTo({qMax(area.width(), item->minimumSize().width()), 10000});
        if (at.x() > area.left() && at.x() + size.width() > area.left() + area.width()) {
            at = {area.left(), at.y() + lineHeight + kGap};
            lineHeight = 0;
        }
        if (isMoving)
            item->setGeometry(QStyle::visualRect(direction, area, QRect(at, size)));
        at.rx() += size.width() + kGap;
        lineHeight = qMax(lineHeight, size.height());
    }
    return at.y() + lineHeight - area.top();
}
