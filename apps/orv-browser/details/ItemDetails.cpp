#include "apps/orv-browser/details/ItemDetails.h"

#include <QLabel>
#include <QPushButton>
#include <QToolButton>
#include <QVBoxLayout>

#include "apps/orv-browser/details/DetailRows.h"
#include "apps/orv-browser/details/MakerCard.h"
#include "apps/orv-browser/details/PictureView.h"
#include "apps/orv-browser/details/SimilarSearch.h"
#include "apps/orv-browser/details/SimilarView.h"
#include "apps/orv-browser/gallery/GalleryModel.h"
#include "apps/orv-browser/models/Names.h"

namespace {

QString newsText(NewItems::Kind kind)
{
    if (kind == NewItems::Kind::Old)
        return {};
    return kind == NewItems::Kind::Added ? ItemDetails::tr("new since you last looked")
                                         : ItemDetails::tr("changed since you last looked");
}

} // namespace

ItemDetails::ItemDetails(const UserLists& lists, MakerLogos& logos, QWidget* parent)
    : QWidget(parent),
      mPicture(new PictureView),
      mPictureNote(new QLabel),
      mFavourite(new QToolButton),
      mCopy(new QPushButton(tr("Copy to"))),
      mRows(new DetailRows),
      mMakerCard(new MakerCard(logos)),
      mSearch(new SimilarSearch(this)),
      mSimilarTitle(new QLabel(tr("Similar"))),
      mSimilar(new SimilarView(lists))
{
    mPicture->setObjectName(QStringLiteral("detailsPicture"));
    mPictureNote->setObjectName(QStringLiteral("detailsPictureNote"));
    mFavourite->setObjectName(QStringLiteral("detailsFavourite"));
    mFavourite->setCheckable(true);
    mFavourite->setFocusPolicy(Qt::TabFocus);
    mFavourite->setAccessibleName(tr("Favourite"));
    mCopy->setObjectName(QStringLiteral("detailsCopy"));
    mTitle = mRows->addTitle(QStringLiteral("detailsTitle"));
    mRows->addRow(mPicture);
    mRows->addRow(mPictureNote);
    mRows->addRow(mFavourite);
    mNew = mRows->addText(tr("News:"), QStringLiteral("detailsNew"));
    mCatalog = mRows->addText(tr("Catalog:"), QStringLiteral("detailsCatalog"));
    mFolder = mRows->addLink(tr("Folder:"), QStringLiteral("detailsFolder"));
    mPaneName = mRows->addText(tr("Selection name:"), QStringLiteral("detailsPaneName"));
    mStyle = mRows->addLink(tr("Style:"), QStringLiteral("detailsStyle"));
    mMaker = mRows->addLink(tr("Manufacturer:"), QStringLiteral("detailsManufacturer"));
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(mRows);
    layout->addWidget(mCopy, 0, Qt::AlignLeft);
    layout->addWidget(mMakerCard);
    layout->addWidget(mSimilarTitle);
    layout->addWidget(mSimilar);
    layout->addStretch();
    QFont bold = mSimilarTitle->font();
    bold.setBold(true);
    mSimilarTitle->setFont(bold);
    mSimilarTitle->setBuddy(mSimilar);
    showSimilar({});
    connect(mSearch, &SimilarSearch::found, this, &ItemDetails::showSimilar);
    connect(mSimilar, &SimilarView::chosen, this, &ItemDetails::similarChosen);
    connect(mFolder, &QLabel::linkActivated, this, &ItemDetails::folderAsked);
    connect(mStyle, &QLabel::linkActivated, this, [this] { Q_EMIT styleAsked(mStyleNumber); });
    connect(mMaker, &QLabel::linkActivated, this, [this] { Q_EMIT makerAsked(mMakerNumber); });
    connect(mMakerCard, &MakerCard::allAsked, this, &ItemDetails::makerAsked);
    connect(mFavourite, &QToolButton::clicked, this, &ItemDetails::favouriteClicked);
}

void ItemDetails::setCopyMenu(QMenu* menu)
{
    mCopy->setMenu(menu);
}

void ItemDetails::show(const GalleryModel& model, int row)
{
    const QModelIndex index = model.index(row, 0);
    const CatalogContent& catalog = model.catalogAt(row);
    const CatalogContent::Item& item = model.contentAt(row);
    mIndex = index;
    mTitle->setText(catalog.itemName(item));
    mPicture->show(index);
    mPicture->setAccessibleName(tr("Picture of %1").arg(catalog.itemName(item)));
    showPictureState(index);
    const bool isFavourite = index.data(GalleryModel::kFavouriteRole).toBool();
    mFavourite->setChecked(isFavourite);
    mFavourite->setText(isFavourite ? tr("★ Favourite") : tr("☆ Make it a favourite"));
    mRows->set(mNew, newsText(static_cast<NewItems::Kind>(index.data(GalleryModel::kNewRole).toInt())));
    mRows->set(mCatalog, catalog.name());
    mRows->setLink(mFolder, catalog.pathOf(item.folder).join(QStringLiteral(" › ")));
    mFolder->setToolTip(tr("Show in folder"));
    const QString paneName = QString::fromStdString(catalog.paneName(item));
    mRows->set(mPaneName, paneName == catalog.itemName(item) ? QString() : paneName);
    mStyleNumber = item.style;
    mMakerNumber = item.maker;
    mRows->setLink(mStyle, Names::style(item.style));
    mRows->setLink(mMaker, Names::maker(item.maker));
    const auto& makers = model.found().makers;
    const auto count = makers.find(item.maker);
    mMakerCard->show(item.maker, count == makers.end() ? -1 : count->second);
    mSearch->ask(model.found().index, catalog.database(), item.id);
}

void ItemDetails::showSimilar(const ItemQuery::Found& found)
{
    mSimilar->show(found);
    mSimilarTitle->setVisible(!found.items.empty());
    mSimilar->setVisible(!found.items.empty());
}

/// A form layout keeps the heights of its rows when only the width changes, as when the pane begins to
/// scroll. It is made to look at them again.
void ItemDetails::resizeEvent(QResizeEvent* event)
{
    QWidget::resizeEvent(event);
    layout()->update();
}

void ItemDetails::showPictureState(const QModelIndex& index)
{
    const auto state = static_cast<PictureStore::State>(index.data(GalleryModel::kPictureStateRole).toInt());
    const bool isBroken = state == PictureStore::State::Broken;
    mPictureNote->setText(isBroken ? tr("The picture is broken.") : QString());
    mPictureNote->setVisible(isBroken);
    mPicture->update();
}
