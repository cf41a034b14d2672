#include "apps/orv-browser/gallery/GalleryBar.h"

#include <QButtonGroup>
#include <QComboBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLocale>
#include <QSlider>
#include <QToolButton>

#include "apps/orv-browser/gallery/Breadcrumbs.h"

namespace {

constexpr int kFirstSide = 128;
constexpr int kStep = 16;
constexpr int kSliderWidth = 110;

} // namespace

GalleryBar::GalleryBar(QWidget* parent)
    : QWidget(parent),
      mBreadcrumbs(new Breadcrumbs),
      mCount(new QLabel),
      mTools(new QWidget),
      mOrder(new QComboBox),
      mSide(new QSlider(Qt::Horizontal))
{
    mCount->setObjectName(QStringLiteral("itemCount"));
    mOrder->setObjectName(QStringLiteral("sortOrder"));
    mOrder->setAccessibleName(tr("Sort by"));
    mOrder->setToolTip(mOrder->accessibleName());
    mOrder->addItems({tr("Name"), tr("Catalog"), tr("Style"), tr("Manufacturer")});
    mSide->setObjectName(QStringLiteral("pictureSize"));
    mSide->setAccessibleName(tr("Size of the pictures"));
    mSide->setToolTip(mSide->accessibleName());
    mSide->setRange(kLeastSide, kMostSide);
    mSide->setSingleStep(kStep);
    mSide->setPageStep(2 * kStep);
    mSide->setValue(kFirstSide);
    mSide->setFixedWidth(kSliderWidth);

    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(mBreadcrumbs, 1);
    layout->addWidget(mCount);
    auto* tools = new QHBoxLayout(mTools);
    tools->setContentsMargins(0, 0, 0, 0);
    tools->addWidget(mOrder);
    mDescending = addButton(QStringLiteral("sortDescending"), tr("Last first"));
    mDescending->setText(QStringLiteral("↓"));
    mGrid = addButton(QStringLiteral("showGrid"), tr("Show pictures"));
    mGrid->setText(QStringLiteral("▦"));
    mList = addButton(QStringLiteral("showList"), tr("Show a list"));
    mList->setText(QStringLiteral("☰"));
    mGrid->setChecked(true);
    auto* views = new QButtonGroup(this);
    views->addButton(mGrid);
    views->addButton(mList);
    tools->addWidget(mSide);

    connect(mSide, &QSlider::valueChanged, this, &GalleryBar::sideChanged);
    connect(mGrid, &QToolButton::toggled, this, &GalleryBar::gridChanged);
    connect(mOrder, qOverload<int>(&QComboBox::currentIndexChanged), this, &GalleryBar::orderChanged);
    connect(mDescending, &QToolButton::toggled, this, &GalleryBar::orderChanged);
}

QToolButton* GalleryBar::addButton(const QString& name, const QString& accessibleName)
{
    auto* button = new QToolButton;
    button->setObjectName(name);
    button->setAccessibleName(accessibleName);
    button->setToolTip(accessibleName);
    button->setCheckable(true);
    button->setAutoRaise(true);
    mTools->layout()->addWidget(button);
    return button;
}

void GalleryBar::setCount(int items)
{
    mCount->setText(tr("%Ln item(s)", nullptr, items));
}

int GalleryBar::side() const
{
    return mSide->value();
}

void GalleryBar::setSide(int side)
{
    mSide->setValue(side);
}

bool GalleryBar::isGrid() const
{
    return mGrid->isChecked();
}

void GalleryBar::setGrid(bool isGrid)
{
    (isGrid ? mGrid : mList)->setChecked(true);
}

ItemQuery::Order GalleryBar::order() const
{
    return static_cast<ItemQuery::Order>(mOrder->currentIndex());
}

bool GalleryBar::isDescending() const
{
    return mDescending->isChecked();
}

void GalleryBar::setOrder(ItemQuery::Order order, bool isDescending)
{
    mOrder->setCurrentIndex(static_cast<int>(order));
    mDescending->setChecked(isDescending);
}
