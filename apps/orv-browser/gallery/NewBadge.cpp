#include "apps/orv-browser/gallery/NewBadge.h"

#include <QCoreApplication>
#include <QPainter>
#include <QStyle>
#include <QStyleOptionViewItem>

#include "apps/orv-browser/gallery/GalleryModel.h"

namespace {

constexpr int kMargin = 4; // pixels
constexpr int kPadding = 5;
constexpr double kTextScale = 0.8;

/// White text is readable on both colours.
const QColor kAdded(45, 125, 70);
const QColor kChanged(44, 98, 170);

} // namespace

QString NewBadge::text(NewItems::Kind kind)
{
    switch (kind) {
    case NewItems::Kind::Added:
        return QCoreApplication::translate("NewBadge", "New");
    case NewItems::Kind::Changed:
        return QCoreApplication::translate("NewBadge", "Changed");
    default:
        return {};
    }
}

void NewBadge::draw(QPainter& painter, const QStyleOptionViewItem& option, const QRect& area, int alignment,
                    const QModelIndex& index)
{
    const auto kind = static_cast<NewItems::Kind>(index.data(GalleryModel::kNewRole).toInt());
    const QString shown = text(kind);
    if (shown.isEmpty())
        return;
    painter.save();
    QFont font = option.font;
    font.setBold(true);
    font.setPointSizeF(font.pointSizeF() * kTextScale);
    const QFontMetrics metrics(font);
    const QSize size(metrics.horizontalAdvance(shown) + 2 * kPadding, metrics.height() + 2);
    const QRect badge = QStyle::alignedRect(option.direction, Qt::Alignment(alignment), size,
                                            area.adjusted(kMargin, kMargin, -kMargin, -kMargin));
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(kind == NewItems::Kind::Added ? kAdded : kChanged);
    painter.drawRoundedRect(badge, badge.height() / 2.0, badge.height() / 2.0);
    painter.setPen(Qt::white);
    painter.setFont(font);
    painter.drawText(badge, Qt::AlignCenter, shown);
    painter.restore();
}
