#include "apps/orv-browser/places/PlaceDelegate.h"

#include <QApplication>
#include <QLocale>
#include <QPainter>

#include "apps/orv-browser/places/PlaceIcons.h"
#include "apps/orv-browser/places/PlacesModel.h"

namespace {

constexpr int kRowHeight = 26; // pixels
constexpr int kMargin = 6;
constexpr int kSignSide = 10;

} // namespace

QSize PlaceDelegate::sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const
{
    const QSize given = QStyledItemDelegate::sizeHint(option, index);
    return {given.width(), qMax(given.height(), kRowHeight)};
}

void PlaceDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option,
                          const QModelIndex& index) const
{
    QStyleOptionViewItem row = option;
    initStyleOption(&row, index);
    const QVariant count = index.data(PlacesModel::kCountRole);
    const QString number = count.isValid() ? QLocale().toString(count.toInt()) : QString();
    const auto state = static_cast<PlacesModel::State>(index.data(PlacesModel::kStateRole).toInt());
    const int sign = state == PlacesModel::State::None ? 0 : kSignSide + kMargin;
    const int room = number.isEmpty() ? sign : row.fontMetrics.horizontalAdvance(number) + 2 * kMargin + sign;
    QStyle* style = row.widget ? row.widget->style() : QApplication::style();
    const QRect text = style->subElementRect(QStyle::SE_ItemViewItemText, &row, row.widget);
    row.text = row.fontMetrics.elidedText(row.text, Qt::ElideRight, qMax(0, text.width() - room));
    style->drawControl(QStyle::CE_ItemViewItem, &row, painter, row.widget);

    const bool isSelected = row.state & QStyle::State_Selected;
    painter->save();
    painter->setFont(row.font);
    painter->setPen(row.palette.color(isSelected ? QPalette::HighlightedText : QPalette::PlaceholderText));
    const QRect area(option.rect.right() - room, option.rect.top(), room - kMargin, option.rect.height());
    if (sign > 0) {
        const QRect place(area.left(), area.center().y() - kSignSide / 2, kSignSide, kSignSide);
        PlaceIcons::drawSign(*painter, QStyle::visualRect(option.direction, option.rect, place),
                             state == PlacesModel::State::Waiting);
    }
    painter->drawText(QStyle::visualRect(option.direction, option.rect, area),
                      QStyle::visualAlignment(option.direction, Qt::AlignRight | Qt::AlignVCenter), number);
    painter->restore();
}
