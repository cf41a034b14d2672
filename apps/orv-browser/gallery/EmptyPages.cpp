#include "apps/orv-browser/gallery/EmptyPages.h"

#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

namespace {

constexpr int kGap = 8; // pixels

QLabel* addText(QVBoxLayout& layout, const QString& text, bool isTitle)
{
    auto* label = new QLabel(text);
    label->setTextFormat(Qt::PlainText);
    label->setAlignment(Qt::AlignCenter);
    label->setWordWrap(true);
    QFont font = label->font();
    font.setBold(isTitle);
    label->setFont(font);
    layout.addWidget(label);
    return label;
}

QPushButton* addButton(QVBoxLayout& layout, const QString& text, const QString& name)
{
    auto* button = new QPushButton(text);
    button->setObjectName(name);
    layout.addWidget(button, 0, Qt::AlignCenter);
    return button;
}

} // namespace

NothingFoundPage::NothingFoundPage(QWidget* parent) : QWidget(parent)
{
    auto* layout = new QVBoxLayout(this);
    layout->addStretch();
    addText(*layout, tr("Nothing found"), true);
    mText = addText(*layout, QString(), false);
    mText->setObjectName(QStringLiteral("nothingFound"));
    layout->addSpacing(kGap);
    auto* everywhere = addButton(*layout, tr("Search everywhere"), QStringLiteral("searchEverywhere"));
    auto* clear = addButton(*layout, tr("Clear"), QStringLiteral("clearSearch"));
    layout->addStretch();
    mEverywhere = everywhere;
    mClear = clear;
    connect(everywhere, &QPushButton::clicked, this, &NothingFoundPage::everywhereAsked);
    connect(clear, &QPushButton::clicked, this, &NothingFoundPage::clearAsked);
}

void NothingFoundPage::show(const QString& place, const QStringList& restrictions, int elsewhere)
{
    const QString where = restrictions.isEmpty()
                              ? tr("“%1” holds no items.").arg(place)
                              : tr("Nothing in “%1” fits: %2.").arg(place, restrictions.join(tr(", ")));
    mText->setText(
        elsewhere == 0 ? where : where + QLatin1Char('\n') + tr("%Ln item(s) elsewhere", nullptr, elsewhere));
    mEverywhere->setVisible(elsewhere > 0);
    mClear->setVisible(!restrictions.isEmpty());
}

OfferPage::OfferPage(QWidget* parent) : QWidget(parent)
{
    auto* layout = new QVBoxLayout(this);
    layout->addStretch();
    addText(*layout, tr("The library is empty."), true);
    mText = addText(*layout, QString(), false);
    layout->addSpacing(kGap);
    auto* fetch = addButton(*layout, tr("Fetch the content"), QStringLiteral("fetchContent"));
    auto* import = addButton(*layout, tr("Import an archive…"), QStringLiteral("importFirst"));
    layout->addStretch();
    mFetch = fetch;
    mImport = import;
    connect(fetch, &QPushButton::clicked, this, &OfferPage::fetchAsked);
    connect(import, &QPushButton::clicked, this, &OfferPage::importAsked);
    showFetching(false);
}

void OfferPage::showFetching(bool isFetching)
{
    mText->setText(isFetching ? tr("The catalogs are on their way. Each one appears as soon as it is here.")
                              : tr("Fetch the catalogs from the service, or import an archive that you have. "
                                   "You can also drop an archive on this window."));
    mFetch->setVisible(!isFetching);
    mImport->setVisible(!isFetching);
}
