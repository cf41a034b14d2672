#include "apps/orv-browser/start/FirstStartPage.h"

#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

#include "apps/orv-browser/search/FlowLayout.h"
#include "apps/orv-browser/start/CatalogBoxes.h"

namespace {

constexpr int kWidest = 560; // pixels; longer lines are hard to read
constexpr int kGap = 10;

QPushButton* addButton(QLayout& layout, const QString& text, const char* name)
{
    auto* button = new QPushButton(text);
    button->setObjectName(QLatin1String(name));
    layout.addWidget(button);
    return button;
}

} // namespace

FirstStartPage::FirstStartPage(QWidget* parent)
    : QScrollArea(parent),
      mText(new QLabel),
      mOffers(new QWidget),
      mAddress(new QLineEdit),
      mState(new QLabel),
      mBonus(new CatalogBoxes(tr("Bonus catalogs"))),
      mManufacturer(new CatalogBoxes(tr("Manufacturer catalogs")))
{
    setObjectName(QStringLiteral("firstStart"));
    setFrameShape(QFrame::NoFrame);
    setFocusPolicy(Qt::NoFocus); // the offers take the keys
    setWidgetResizable(true);
    auto* column = new QWidget;
    column->setObjectName(QStringLiteral("firstStartColumn"));
    column->setMaximumWidth(kWidest);
    auto* page = new QWidget;
    auto* middle = new QHBoxLayout(page);
    middle->addStretch(1);
    middle->addWidget(column, 1000); // as wide as it may be
    middle->addStretch(1);
    auto* layout = new QVBoxLayout(column);
    layout->setSpacing(kGap);
    layout->addStretch(1);
    addTexts(*layout);
    auto* offers = new QVBoxLayout(mOffers);
    offers->setContentsMargins(0, 0, 0, 0);
    offers->setSpacing(kGap);
    addAddress(*offers);
    mBonus->setObjectName(QStringLiteral("bonusBoxes"));
    mManufacturer->setObjectName(QStringLiteral("manufacturerBoxes"));
    auto* groups = new QWidget; // side by side where there is room, so that the buttons stay in sight
    auto* sides = new FlowLayout(groups);
    sides->addWidget(mBonus);
    sides->addWidget(mManufacturer);
    offers->addWidget(groups);
    addButtons(*offers);
    layout->addWidget(mOffers);
    layout->addStretch(2);
    setWidget(page);
    setFetchable(false);
    offerSamples(false);
    showFetching(false);
}

void FirstStartPage::addTexts(QVBoxLayout& layout)
{
    auto* title = new QLabel(tr("The library is empty."));
    title->setTextFormat(Qt::PlainText);
    QFont font = title->font();
    font.setBold(true);
    title->setFont(font);
    layout.addWidget(title);
    mText->setObjectName(QStringLiteral("firstStartText"));
    mText->setTextFormat(Qt::PlainText);
    mText->setWordWrap(true);
    layout.addWidget(mText);
}

void FirstStartPage::addAddress(QVBoxLayout& layout)
{
    auto* label = new QLabel(tr("&Address of the catalog service:"));
    label->setBuddy(mAddress);
    layout.addWidget(label);
    mAddress->setObjectName(QStringLiteral("serviceAddress"));
    mAddress->setAccessibleName(tr("Address of the catalog service"));
    mAddress->setPlaceholderText(QStringLiteral("https://…/redirect"));
    layout.addWidget(mAddress);
    mState->setObjectName(QStringLiteral("serviceState"));
    mState->setTextFormat(Qt::PlainText);
    mState->setWordWrap(true);
    layout.addWidget(mState);
    connect(mAddress, &QLineEdit::textChanged, this, &FirstStartPage::addressChanged);
    connect(mAddress, &QLineEdit::returnPressed, this, [this] { mFetch->click(); });
}

void FirstStartPage::addButtons(QVBoxLayout& layout)
{
    auto* line = new QWidget;
    auto* buttons = new FlowLayout(line);
    mFetch = addButton(*buttons, tr("Fetch the content"), "fetchContent");
    mImport = addButton(*buttons, tr("Import an archive…"), "importFirst");
    mSamples = addButton(*buttons, tr("Try with sample content"), "trySamples");
    layout.addWidget(line);
    connect(mFetch, &QPushButton::clicked, this, &FirstStartPage::fetchAsked);
    connect(mImport, &QPushButton::clicked, this, &FirstStartPage::importAsked);
    connect(mSamples, &QPushButton::clicked, this, &FirstStartPage::samplesAsked);
}

QString FirstStartPage::address() const
{
    return mAddress->text().trimmed();
}

void FirstStartPage::suggest(const QString& address)
{
    if (!mAddress->isModified() || mAddress->text().isEmpty())
        mAddress->setText(address);
}

void FirstStartPage::say(const QString& sentence)
{
    mState->setText(sentence);
    mAddress->setAccessibleDescription(sentence);
}

void FirstStartPage::setFetchable(bool isFetchable)
{
    mFetch->setEnabled(isFetchable);
}

void FirstStartPage::showCatalogs(const ServiceOffer& offer, const OrvHost::Settings::Values& settings)
{
    mBonus->show(offer.bonus, settings.bonus);
    mManufacturer->show(offer.manufacturer, settings.manufacturer);
    QWidget* former = mAddress;
    for (const QList<QWidget*>& group :
         {mBonus->boxes(), mManufacturer->boxes(), {mFetch, mImport, mSamples}})
        for (QWidget* one : group) {
            setTabOrder(former, one);
            former = one;
        }
}

void FirstStartPage::offerSamples(bool areThere)
{
    mSamples->setVisible(areThere);
}

void FirstStartPage::showFetching(bool isFetching)
{
    mText->setText(isFetching
                       ? tr("The catalogs are on their way. Each one appears as soon as it is here.")
                       : tr("Fetch the catalogs from a service, or import an archive that you have. You can "
                            "also drop an archive anywhere on this window."));
    mOffers->setVisible(!isFetching);
}

void FirstStartPage::showEvent(QShowEvent* event)
{
    QScrollArea::showEvent(event);
    Q_EMIT shownChanged(true);
}

void FirstStartPage::hideEvent(QHideEvent* event)
{
    QScrollArea::hideEvent(event);
    Q_EMIT shownChanged(false);
}
