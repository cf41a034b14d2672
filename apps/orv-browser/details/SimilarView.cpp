#include "apps/orv-browser/details/SimilarView.h"

#include <QPainter>
#include <QStyledItemDelegate>

#include "apps/orv-browser/gallery/GalleryDelegate.h"
#include "apps/orv-browser/gallery/GalleryModel.h"
#include "apps/orv-browser/gallery/ItemPicture.h"

namespace {

constexpr int kSide = 64; // pixels of a picture
constexpr int kMargin = 4;
constexpr int kLines = 2; // of the name

/// A picture above two lines of its name.
class SimilarDelegate : public QStyledItemDelegate
{
public:
    using QStyledItemDelegate::QStyledItemDelegate;

    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex&) const override
    {
        return {kSide + 4 * kMargin, kSide + kLines * option.fontMetrics.lineSpacing() + 4 * kMargin};
    }

    void paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const override
    {
        const QPalette& palette = option.palette;
        const bool hasFocus = option.state & QStyle::State_HasFocus;
        const bool isHovered = option.state & QStyle::State_MouseOver;
        const QRect tile = option.rect.adjusted(1, 1, -1, -1);
        painter->save();
        painter->setRenderHint(QPainter::Antialiasing);
        painter->setPen(hasFocus ? QPen(palette.color(QPalette::Highlight), 2) : QPen(Qt::NoPen));
        painter->setBrush(palette.color(isHovered ? QPalette::Midlight : QPalette::AlternateBase));
        painter->drawRoundedRect(QRectF(tile).adjusted(1, 1, -1, -1), kMargin, kMargin);
        const QRect picture(tile.left() + kMargin, tile.top() + kMargin, tile.width() - 2 * kMargin, kSide);
        ItemPicture::paint(*painter, picture, index, palette);
        const QRect name(picture.left(), picture.bottom() + kMargin, picture.width(),
                         kLines * option.fontMetrics.lineSpacing());
        painter->setPen(palette.color(QPalette::Text));
        GalleryDelegate::paintName(*painter, option.font, name, index.data().toString());
        painter->restore();
    }
};

} // namespace

SimilarView::SimilarView(const UserLists& lists, QWidget* parent)
    : QListView(parent), mItems(new GalleryModel(lists, this))
{
    setObjectName(QStringLiteral("similarItems"));
    setAccessibleName(tr("Similar items"));
    setModel(mItems);
    setItemDelegate(new SimilarDelegate(this));
    setFrameShape(QFrame::NoFrame);
    setFlow(QListView::LeftToRight);
    setWrapping(true);
    setResizeMode(QListView::Adjust);
    setUniformItemSizes(true);
    setGridSize({kSide + 4 * kMargin, kSide + kLines * fontMetrics().lineSpacing() + 4 * kMargin});
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setSelectionMode(QAbstractItemView::NoSelection);
    setEditTriggers(QAbstractItemView::NoEditTriggers);
    setMouseTracking(true); // for the tile under the pointer
    viewport()->setAutoFillBackground(false);
    connect(this, &QListView::clicked, this, &SimilarView::choose);
    connect(this, &QListView::activated, this, &SimilarView::choose);
}

/// The model must not tell a view that is half gone of its end.
SimilarView::~SimilarView()
{
    setModel(nullptr);
}

void SimilarView::show(const ItemQuery::Found& found)
{
    mItems->show(found);
    fitHeight();
}

void SimilarView::resizeEvent(QResizeEvent* event)
{
    QListView::resizeEvent(event);
    fitHeight();
}

/// A fixed height shows all rows, and leaves the heights of the texts above to their layout.
void SimilarView::fitHeight()
{
    const int columns = qMax(1, (width() - 1) / gridSize().width()); // the last pixel stays free
    setFixedHeight((mItems->rowCount() + columns - 1) / columns * gridSize().height());
}

void SimilarView::choose(const QModelIndex& index)
{
    const ItemDrag::Item item = mItems->itemAt(index.row());
    Q_EMIT chosen(item.database, item.id);
}
