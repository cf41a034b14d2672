// How it works: the bar holds what the user typed and chose, and nothing of what is found. `addTo` writes it
// into a query, in which the words are folded (no case, no accents) and the stored filter becomes a set of
// catalogs. The owner of the bar asks the query and gives the result to `showNumbers`, which fills the
// choices with their numbers. While the user types, `changed` waits 30 ms, so that fast typing asks once.
#include "apps/orv-browser/search/SearchBar.h"

#include <algorithm>
#include <set>

#include <QFile>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLineEdit>
#include <QLocale>
#include <QToolButton>
#include <QVBoxLayout>

#include "OrvHost/records/FilterChange.h"
#include "OrvLibrary/LibraryFilterManager.h"
#include "apps/orv-browser/models/Names.h"
#include "apps/orv-browser/models/TextFolding.h"
#include "apps/orv-browser/search/FacetChip.h"
#include "apps/orv-browser/search/FilterChip.h"
#include "apps/orv-browser/search/FlowLayout.h"

namespace {

constexpr int kDelayMilliseconds = 30;

QString textOf(const fileString& path)
{
    return QFile::decodeName(path.toNativeString().c_str());
}

std::vector<FacetChip::Value> valuesOf(const std::map<std::int32_t, int>& counts,
                                       QString (*nameOf)(std::int32_t))
{
    std::vector<FacetChip::Value> values;
    for (const auto& [number, count] : counts)
        values.push_back({number, nameOf(number), count});
    std::sort(values.begin(), values.end(), [](const FacetChip::Value& left, const FacetChip::Value& right) {
        return QString::localeAwareCompare(left.name, right.name) < 0;
    });
    return values;
}

} // namespace

SearchBar::SearchBar(QWidget* parent)
    : QWidget(parent),
      mFirstLine(new QHBoxLayout),
      mField(new QLineEdit),
      mStyle(new FacetChip(tr("Style"))),
      mMaker(new FacetChip(tr("Manufacturer"))),
      mCatalog(new FacetChip(tr("Catalog"))),
      mFavourites(new QToolButton),
      mNew(new QToolButton),
      mFilters(new FilterChip)
{
    setObjectName(QStringLiteral("searchBar"));
    mDelay.setSingleShot(true);
    mDelay.setInterval(kDelayMilliseconds);
    buildField();
    buildChips();
    auto* chips = new FlowLayout;
    for (QWidget* chip :
         {static_cast<QWidget*>(mStyle), static_cast<QWidget*>(mMaker), static_cast<QWidget*>(mCatalog),
          static_cast<QWidget*>(mFavourites), static_cast<QWidget*>(mNew)})
        chips->addWidget(chip);
    chips->addWidget(mFilters);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    mFirstLine->addWidget(mField, 1);
    layout->addLayout(mFirstLine);
    layout->addLayout(chips);
}

void SearchBar::addBesideField(QWidget* tools)
{
    mFirstLine->addWidget(tools);
}

void SearchBar::buildField()
{
    mField->setObjectName(QStringLiteral("searchField"));
    mField->setPlaceholderText(tr("Search the library"));
    mField->setAccessibleName(tr("Search the library"));
    mField->setClearButtonEnabled(true);
    mField->installEventFilter(this);
    connect(mField, &QLineEdit::textChanged, &mDelay, qOverload<>(&QTimer::start));
    connect(&mDelay, &QTimer::timeout, this, &SearchBar::changed);
}

void SearchBar::buildChips()
{
    mStyle->setObjectName(QStringLiteral("styleChip"));
    mMaker->setObjectName(QStringLiteral("makerChip"));
    mCatalog->setObjectName(QStringLiteral("catalogChip"));
    mFavourites->setObjectName(QStringLiteral("favouritesChip"));
    mFavourites->setText(tr("Favourites"));
    mNew->setObjectName(QStringLiteral("newChip"));
    mNew->setText(tr("New"));
    mNew->setToolTip(tr("Items that updates brought since you last looked"));
    for (QToolButton* chip : {mFavourites, mNew}) {
        chip->setCheckable(true);
        chip->setFocusPolicy(Qt::TabFocus);
        connect(chip, &QToolButton::clicked, this, &SearchBar::changed);
    }
    for (FacetChip* chip : {mStyle, mMaker, mCatalog})
        connect(chip, &FacetChip::chosen, this, &SearchBar::changed);
}

void SearchBar::focusField()
{
    mField->setFocus();
    mField->selectAll();
}

void SearchBar::addTo(ItemQuery& query) const
{
    const QString text = QString::fromStdString(TextFolding::folded(mField->text().toStdString()));
    for (const QString& word : text.simplified().split(QLatin1Char(' '), Qt::SkipEmptyParts))
        query.terms.push_back(word.toStdString());
    if (mStyle->value().isValid())
        query.style = mStyle->value().toInt();
    if (mMaker->value().isValid())
        query.maker = mMaker->value().toInt();
    if (mCatalog->value().isValid())
        query.catalog = fileString(QFile::encodeName(mCatalog->value().toString()).toStdString());
    query.onlyFavourites = mFavourites->isChecked();
    query.onlyNew = mNew->isChecked();
    const LibraryFilterManager& manager = LibraryFilterManager::getLibraryFilterManager();
    if (!OrvHost::FilterChange::isFiltering(manager))
        return;
    const auto& ids = manager.getCurrentFilteredDatabases();
    query.filter = std::set<std::string>(ids.begin(), ids.end());
}

void SearchBar::showNumbers(const ItemQuery::Found& found)
{
    mStyle->setValues(valuesOf(found.styles, Names::style));
    mMaker->setValues(valuesOf(found.makers, Names::maker));
    std::vector<FacetChip::Value> catalogs;
    for (const auto& [position, count] : found.catalogs) {
        const CatalogContent& catalog = *found.index->catalogs()[position];
        catalogs.push_back({textOf(catalog.database()), catalog.name(), count});
    }
    mCatalog->setValues(std::move(catalogs));
    mFilters->setSavable(!found.items.empty() && (hasChoices() || !mField->text().simplified().isEmpty()));
    mFavourites->setText(found.favourites == 0
                             ? tr("Favourites")
                             : tr("Favourites (%1)").arg(QLocale().toString(found.favourites)));
    mNew->setText(found.newItems == 0 ? tr("New") : tr("New (%1)").arg(QLocale().toString(found.newItems)));
}

QStringList SearchBar::restrictions() const
{
    QStringList restrictions;
    const QString words = mField->text().simplified();
    if (!words.isEmpty())
        restrictions << tr("the words “%1”").arg(words);
    for (const FacetChip* chip : {mStyle, mMaker, mCatalog})
        if (chip->value().isValid())
            restrictions << chip->accessibleName();
    if (mFavourites->isChecked())
        restrictions << tr("only favourites");
    if (mNew->isChecked())
        restrictions << tr("only what is new");
    const LibraryFilterManager& manager = LibraryFilterManager::getLibraryFilterManager();
    if (OrvHost::FilterChange::isFiltering(manager))
        restrictions << tr("the filter “%1”").arg(QString::fromStdString(manager.getCurrentFilterString()));
    return restrictions;
}

QStringList SearchBar::choices() const
{
    QStringList choices;
    for (const FacetChip* chip : {mStyle, mMaker, mCatalog})
        if (chip->value().isValid())
            choices << chip->valueName();
    if (mFavourites->isChecked())
        choices << tr("Favourites");
    if (mNew->isChecked())
        choices << tr("New");
    return choices;
}

void SearchBar::clear()
{
    {
        const QSignalBlocker blocker(mField);
        mField->clear();
    }
    mDelay.stop();
    clearChoices();
    Q_EMIT changed();
}

void SearchBar::clearChoices()
{
    for (FacetChip* chip : {mStyle, mMaker, mCatalog})
        chip->clear();
    mFavourites->setChecked(false);
    mNew->setChecked(false);
    if (OrvHost::FilterChange::isFiltering(LibraryFilterManager::getLibraryFilterManager()))
        Q_EMIT mFilters->useAsked(OrvHost::FilterChange::kNoFilter);
}

bool SearchBar::hasChoices() const
{
    return mStyle->value().isValid() || mMaker->value().isValid() || mCatalog->value().isValid() ||
           mFavourites->isChecked() || mNew->isChecked() ||
           OrvHost::FilterChange::isFiltering(LibraryFilterManager::getLibraryFilterManager());
}

void SearchBar::chooseStyle(std::int32_t style)
{
    mStyle->choose(style, Names::style(style));
}

void SearchBar::chooseMaker(std::int32_t maker)
{
    mMaker->choose(maker, Names::maker(maker));
}

bool SearchBar::isFieldKey(int key)
{
    if (key == Qt::Key_Down || key == Qt::Key_Return || key == Qt::Key_Enter) {
        Q_EMIT itemsAsked();
        return true;
    }
    if (key != Qt::Key_Escape || mField->text().isEmpty())
        return false;
    mField->clear();
    return true;
}

bool SearchBar::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == mField && event->type() == QEvent::KeyPress)
        return isFieldKey(dynamic_cast<QKeyEvent&>(*event).key());
    return QWidget::eventFilter(watched, event);
}
