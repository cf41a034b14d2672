#include "apps/orv-browser/activities/ActivityPane.h"

#include <QHeaderView>
#include <QPushButton>

namespace {

constexpr int kRows = 7; // rows that are visible at first

} // namespace

ActivityPane::ActivityPane(QWidget* parent) : QTreeView(parent), mModel(new ActivityModel(this))
{
    setObjectName(QStringLiteral("activities"));
    setAccessibleName(tr("Activities"));
    setModel(mModel);
    setRootIsDecorated(false);
    setHeaderHidden(true);
    setAllColumnsShowFocus(true);
    setSelectionMode(QAbstractItemView::SingleSelection);
    header()->setStretchLastSection(false);
    header()->setSectionResizeMode(ActivityModel::kName, QHeaderView::ResizeToContents);
    header()->setSectionResizeMode(ActivityModel::kState, QHeaderView::Stretch);
    header()->setSectionResizeMode(ActivityModel::kButton, QHeaderView::ResizeToContents);
    connect(mModel, &QAbstractItemModel::rowsInserted, this, &ActivityPane::placeButtons);
    connect(mModel, &QAbstractItemModel::modelReset, this, &ActivityPane::placeButtons);
    connect(mModel, &QAbstractItemModel::dataChanged, this, &ActivityPane::placeButtons);
}

QSize ActivityPane::sizeHint() const
{
    return {QTreeView::sizeHint().width(), kRows * fontMetrics().lineSpacing() * 3 / 2};
}

void ActivityPane::placeButtons()
{
    for (int row = 0; row < mModel->rowCount(); ++row) {
        const QModelIndex index = mModel->index(row, ActivityModel::kButton);
        const bool hasFailed = mModel->at(row).state == Activity::State::Failed;
        if (hasFailed == (indexWidget(index) != nullptr))
            continue;
        if (!hasFailed) {
            setIndexWidget(index, nullptr);
            continue;
        }
        auto* button = new QPushButton(tr("Retry"));
        button->setObjectName(QStringLiteral("retry"));
        button->setAccessibleName(tr("Retry %1").arg(mModel->at(row).name));
        const QPersistentModelIndex place(index);
        connect(button, &QPushButton::clicked, this, [this, place] {
            const Activity activity = mModel->at(place.row()); // a copy: the list may change meanwhile
            Q_EMIT retryAsked(activity);
        });
        setIndexWidget(index, button);
    }
}
