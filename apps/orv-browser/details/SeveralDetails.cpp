#include "apps/orv-browser/details/SeveralDetails.h"

#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

#include "apps/orv-browser/details/DetailRows.h"

SeveralDetails::SeveralDetails(QWidget* parent) : QWidget(parent), mCopy(new QPushButton(tr("Copy to")))
{
    auto* rows = new DetailRows;
    mTitle = rows->addTitle(QStringLiteral("severalTitle"));
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(rows);
    auto* add = new QPushButton(tr("Make them favourites"));
    add->setObjectName(QStringLiteral("addFavourites"));
    auto* remove = new QPushButton(tr("Remove from favourites"));
    remove->setObjectName(QStringLiteral("removeFavourites"));
    layout->addWidget(add, 0, Qt::AlignLeft);
    layout->addWidget(remove, 0, Qt::AlignLeft);
    mCopy->setObjectName(QStringLiteral("severalCopy"));
    layout->addWidget(mCopy, 0, Qt::AlignLeft);
    layout->addStretch();
    connect(add, &QPushButton::clicked, this, [this] { Q_EMIT favouritesAsked(true); });
    connect(remove, &QPushButton::clicked, this, [this] { Q_EMIT favouritesAsked(false); });
}

void SeveralDetails::setCopyMenu(QMenu* menu)
{
    mCopy->setMenu(menu);
}

void SeveralDetails::show(int count)
{
    mTitle->setText(tr("%Ln item(s) selected", nullptr, count));
}
