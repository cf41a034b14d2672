#include "apps/orv-browser/details/DetailsPane.h"

#include <QVBoxLayout>

#include "apps/orv-browser/details/ItemDetails.h"
#include "apps/orv-browser/details/PlaceDetails.h"
#include "apps/orv-browser/details/SeveralDetails.h"
#include "apps/orv-browser/gallery/GalleryModel.h"

namespace {

constexpr int kLeastWidth = 220; // pixels

} // namespace

DetailsPane::DetailsPane(const LibraryNews& news, const UserLists& lists, MakerLogos& logos, QWidget* parent)
    : QScrollArea(parent),
      mPages(new QWidget),
      mItem(new ItemDetails(lists, logos)),
      mPlace(new PlaceDetails(news)),
      mSeveral(new SeveralDetails)
{
    setObjectName(QStringLiteral("detailsPane"));
    setAccessibleName(tr("Details of the selection"));
    setWidgetResizable(true);
    setFrameShape(QFrame::NoFrame);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setMinimumWidth(kLeastWidth);
    auto* layout = new QVBoxLayout(mPages);
    layout->setContentsMargins(0, 0, 0, 0);
    for (QWidget* page :
         {static_cast<QWidget*>(mItem), static_cast<QWidget*>(mPlace), static_cast<QWidget*>(mSeveral)})
        layout->addWidget(page);
    setWidget(mPages);
    showPage(mPlace);
}

/// Pages that are hidden ask for no room, as those of a stack would.
void DetailsPane::showPage(QWidget* page)
{
    for (QWidget* one :
         {static_cast<QWidget*>(mItem), static_cast<QWidget*>(mPlace), static_cast<QWidget*>(mSeveral)})
        one->setVisible(one == page);
}

void DetailsPane::show(const GalleryModel& model, const std::vector<int>& rows, const Place& place)
{
    if (rows.size() == 1) {
        mItem->show(model, rows.front());
        showPage(mItem);
    } else if (rows.size() > 1) {
        mSeveral->show(static_cast<int>(rows.size()));
        showPage(mSeveral);
    } else {
        mPlace->show(place, *model.found().index, model.rowCount());
        showPage(mPlace);
    }
}
