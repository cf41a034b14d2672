#include "apps/orv-browser/details/PlaceDetails.h"

#include <QDateTime>
#include <QDesktopServices>
#include <QFile>
#include <QFileInfo>
#include <QLabel>
#include <QLocale>
#include <QPushButton>
#include <QUrl>
#include <QVBoxLayout>

#include "apps/orv-browser/details/DetailRows.h"
#include "apps/orv-browser/models/DataSize.h"
#include "apps/orv-browser/models/LibraryContent.h"
#include "apps/orv-browser/models/LibraryNews.h"
#include "apps/orv-browser/places/PlaceNames.h"

namespace {

QFileInfo fileOf(const Place& place)
{
    return QFileInfo(QFile::decodeName(place.database.toNativeString().c_str()));
}

QPushButton* addButton(QVBoxLayout& layout, const QString& text, const QString& name)
{
    auto* button = new QPushButton(text);
    button->setObjectName(name);
    layout.addWidget(button, 0, Qt::AlignLeft);
    return button;
}

} // namespace

PlaceDetails::PlaceDetails(const LibraryNews& news, QWidget* parent)
    : QWidget(parent), mNews(news), mProblem(new QLabel), mRows(new DetailRows), mHint(new QLabel)
{
    mTitle = mRows->addTitle(QStringLiteral("placeTitle"));
    mProblem->setObjectName(QStringLiteral("placeProblem"));
    mProblem->setTextFormat(Qt::PlainText);
    mProblem->setWordWrap(true);
    mRows->addRow(mProblem);
    mState = mRows->addText(tr("State:"), QStringLiteral("placeState"));
    mItems = mRows->addText(tr("Items:"), QStringLiteral("placeItems"));
    mGone = mRows->addText(tr("Gone:"), QStringLiteral("placeGone"));
    mFolders = mRows->addText(tr("Folders:"), QStringLiteral("placeFolders"));
    mVersion = mRows->addText(tr("Version:"), QStringLiteral("placeVersion"));
    mSize = mRows->addText(tr("Size:"), QStringLiteral("placeSize"));
    mDate = mRows->addText(tr("Date:"), QStringLiteral("placeDate"));
    mLastCheck = mRows->addText(tr("Last check:"), QStringLiteral("placeLastCheck"));
    mHint->setObjectName(QStringLiteral("placeHint"));
    mHint->setWordWrap(true);
    mHint->setForegroundRole(QPalette::PlaceholderText);
    mHint->setText(tr("Select an item to see it here. The space bar shows it large."));
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(mRows);
    mCheck = addButton(*layout, tr("Check for updates"), QStringLiteral("checkCatalog"));
    mFetchAgain = addButton(*layout, tr("Fetch again"), QStringLiteral("fetchAgain"));
    mShowFile = addButton(*layout, tr("Show the file"), QStringLiteral("showFile"));
    mSeen = addButton(*layout, tr("Mark all as seen"), QStringLiteral("markSeen"));
    layout->addWidget(mHint);
    layout->addStretch();
    connect(mCheck, &QPushButton::clicked, this, &PlaceDetails::checkAsked);
    connect(mFetchAgain, &QPushButton::clicked, this, [this] { Q_EMIT fetchAgainAsked(mPlace); });
    connect(mSeen, &QPushButton::clicked, this, &PlaceDetails::seenAsked);
    connect(mShowFile, &QPushButton::clicked, this, &PlaceDetails::openFolder);
}

void PlaceDetails::show(const Place& place, const ItemIndex& index, int count)
{
    mPlace = place;
    mTitle->setText(PlaceNames::name(place, index));
    mRows->set(mItems, QLocale().toString(count));
    for (QLabel* label : {mState, mGone, mFolders, mVersion, mSize, mDate, mLastCheck})
        mRows->set(label, QString());
    mProblem->hide();
    const bool isCatalog = place.kind == Place::Kind::Catalog;
    const bool isServices = isCatalog && place.category != LibraryContent::kUserCategory;
    mCheck->setVisible(isServices);
    mFetchAgain->setVisible(isServices);
    mShowFile->setVisible(isCatalog);
    const bool isNews = place.kind == Place::Kind::News;
    const int gone = isNews ? mNews.items()->gone : 0;
    mRows->set(mGone, gone > 0 ? QLocale().toString(gone) : QString());
    mSeen->setVisible(isNews && (gone > 0 || mNews.items()->count() > 0));
    const auto content = isCatalog ? index.find(place.database) : nullptr;
    if (content)
        showCatalog(*content);
}

void PlaceDetails::showCatalog(const CatalogContent& catalog)
{
    mProblem->setVisible(!catalog.problem().isEmpty());
    mProblem->setText(tr("Cannot be read: %1").arg(catalog.problem()));
    mRows->set(mState, mNews.isWaiting(mPlace.database) ? tr("an update is waiting") : QString());
    const QLocale locale;
    const QFileInfo file = fileOf(mPlace);
    mRows->set(mItems, locale.toString(catalog.itemCount(-1)));
    mRows->set(mFolders, locale.toString(static_cast<int>(catalog.folders().size())));
    mRows->set(mVersion, QString::fromStdString(catalog.version()));
    mRows->set(mSize, DataSize::text(file.size()));
    mRows->set(mDate, locale.toString(file.lastModified(), QLocale::ShortFormat));
    const bool isServices = mPlace.category != LibraryContent::kUserCategory;
    if (isServices && mNews.lastCheck().isValid())
        mRows->set(mLastCheck, locale.toString(mNews.lastCheck().toLocalTime(), QLocale::ShortFormat));
}

void PlaceDetails::openFolder() const
{
    QDesktopServices::openUrl(QUrl::fromLocalFile(fileOf(mPlace).absolutePath()));
}
