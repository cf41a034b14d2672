#pragma once

#include <QTreeView>

#include "apps/orv-browser/activities/ActivityModel.h"

/// The list of what is fetched and imported. What failed has a button to try it again.
class ActivityPane : public QTreeView
{
    Q_OBJECT

public:
    explicit ActivityPane(QWidget* parent = nullptr);

    ActivityModel& activities() { return *mModel; }

    QSize sizeHint() const override;

Q_SIGNALS:
    /// The user wants this once more.
    void retryAsked(const Activity& activity);

private:
    void placeButtons();

    ActivityModel* mModel;
};
