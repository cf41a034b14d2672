#include "apps/orv-browser/details/PictureView.h"

#include <QPainter>

#include "apps/orv-browser/gallery/ItemPicture.h"

namespace {

constexpr int kHeight = 200;

} // namespace

PictureView::PictureView(QWidget* parent) : QWidget(parent)
{
    setFixedHeight(kHeight);
}

void PictureView::show(const QModelIndex& index)
{
    mIndex = index;
    update();
}

void PictureView::paintEvent(QPaintEvent*)
{
    if (!mIndex.isValid())
        return;
    QPainter painter(this);
    ItemPicture::paint(painter, rect(), mIndex, palette());
}
