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
