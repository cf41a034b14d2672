#include "apps/orv-browser/gallery/GalleryDelegate.h"

#include <QApplication>
#include <QPainter>
#include <QTextLayout>

#include "apps/orv-browser/gallery/GalleryModel.h"
#include "apps/orv-browser/gallery/ItemPicture.h"
#include "apps/orv-browser/gallery/NewBadge.h"
#include "apps/orv-browser/gallery/Star.h"

namespace {

constexpr int kMargin = 6; // pixels around the picture and the name
constexpr int kNameLines = 2;
constexpr int kStarSide = 20;
constexpr int kListPicture = 28;
constexpr int kCorner = 6;

} // namespace

GalleryDelegate::GalleryDelegate(bool isGrid, QObject* parent) : QStyledItemDelegate(parent), mIsGrid(isGrid)
{
}

QSize GalleryDelegate::tileSize(const QWidget& view) const
{
    const int text = view.fontMetrics().lineSpacing() * kNameLines;
    return {qMax(mSide, 64) + 4 * kMargin, mSide + text + 5 * kMargin};
}

QRect GalleryDelegate::starArea(const QRect& tile, Qt::LayoutDirection direction)
{
    const QRect leftToRight(tile.right() - kStarSide - kMargin, tile.top() + kMargin, kStarSide, kStarSide);
    return QStyle::visualRect(direction, tile, leftToRight);
}

QSize GalleryDelegate::sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const
{
    if (mIsGrid && option.widget)
        return tileSize(*option.widget);
    const QSize given = QStyledItemDelegate::sizeHint(option, index);
    return {given.width() + kListPicture, qMax(given.height(), kListPicture + kMargin)};
}

void GalleryDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option,
                            const QModelIndex& index) const
{
    if (mIsGrid) {
        paintTile(*painter, option, index);
        return;
    }
    if (index.column() != GalleryModel::kName) {
        QStyledItemDelegate::paint(painter, option, index);
        return;
    }
    QStyleOptionViewItem row = option;
    initStyleOption(&row, index);
    row.features |= QStyleOptionViewItem::HasDecoration;
    row.decorationSize = {kListPicture, kListPicture};
    QStyle* style = row.widget ? row.widget->style() : QApplication::style();
    style->drawControl(QStyle::CE_ItemViewItem, &row, painter, row.widget);
    const QRect picture = style->subElementRect(QStyle::SE_ItemViewItemDecoration, &row, row.widget);
    ItemPicture::paint(*painter, picture, index, row.palette);
    if (index.data(GalleryModel::kFavouriteRole).toBool())
        Star::draw(*painter, QRectF(picture.right() - 12, picture.top(), 12, 12), true);
    NewBadge::draw(*painter, option, option.rect, Qt::AlignRight | Qt::AlignVCenter, index);
}

void GalleryDelegate::paintTile(QPainter& painter, const QStyleOptionViewItem& option,
                                const QModelIndex& index) const
{
    const bool isSelected = option.state & QStyle::State_Selected;
    const bool isHovered = option.state & QStyle::State_MouseOver;
    const bool hasFocus = (option.state & QStyle::State_HasFocus) != 0;
    const QRect tile = option.rect.adjusted(kMargin / 2, kMargin / 2, -kMargin / 2, -kMargin / 2);
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    QColor ground = option.palette.color(isSelected ? QPalette::Highlight : QPalette::AlternateBase);
    if (isHovered && !isSelected)
        ground = option.palette.color(QPalette::Midlight);
    painter.setPen(hasFocus ? QPen(option.palette.color(isSelected ? QPalette::Text : QPalette::Highlight), 2)
                            : QPen(Qt::NoPen));
    painter.setBrush(ground);
    painter.drawRoundedRect(QRectF(tile).adjusted(1, 1, -1, -1), kCorner, kCorner);
    painter.restore();

    const QRect picture(tile.left() + kMargin, tile.top() + kMargin, tile.width() - 2 * kMargin, mSide);
    ItemPicture::paint(painter, picture, index, option.palette);
    const QRect name(tile.left() + kMargin, picture.bottom() + kMargin, tile.width() - 2 * kMargin,
                     tile.bottom() - picture.bottom() - kMargin);
    painter.setPen(option.palette.color(isSelected ? QPalette::HighlightedText : QPalette::Text));
    paintName(painter, option.font, name, index.data().toString());
    const bool isFavourite = index.data(GalleryModel::kFavouriteRole).toBool();
    if (isFavourite || isHovered)
        Star::draw(painter, starArea(option.rect, option.direction), isFavourite);
    NewBadge::draw(painter, option, tile, Qt::AlignLeft | Qt::AlignTop, index);
}

void GalleryDelegate::paintName(QPainter& painter, const QFont& font, const QRect& area, const QString& name)
{
    painter.setFont(font);
    const QFontMetrics metrics(font);
    QString rest = name.simplified();
    QTextLayout layout(rest, font);
    QTextOption wrap;
    wrap.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    layout.setTextOption(wrap);
    layout.beginLayout();
    QTextLine first = layout.createLine();
    first.setLineWidth(area.width());
    layout.endLayout();
    QRect line(area.left(), area.top(), area.width(), metrics.lineSpacing());
    painter.drawText(line, Qt::AlignHCenter | Qt::TextSingleLine, rest.left(first.textLength()).trimmed());
    rest = rest.mid(first.textLength());
    if (rest.isEmpty())
        return;
    line.translate(0, metrics.lineSpacing());
    painter.drawText(line, Qt::AlignHCenter | Qt::TextSingleLine,
                     metrics.elidedText(rest, Qt::ElideRight, area.width()));
}
