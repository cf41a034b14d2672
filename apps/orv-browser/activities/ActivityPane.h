#pragma once

#include <QTreeView>

#include "apps/orv-browser/activities/ActivityModel.h"

/// The list of downloads and imports. A failed one has a button to try again.
class ActivityPane : public QTreeView
{
    Q_OBJECT

public:
    explicit ActivityPane(QWidget* parent = nullptr);

    ActivityModel& activities() { return *mModel; }

    QSize sizeHint() const override;

Q_SIGNALS:
    /// The user wants to try this again.
    void retryAsked(const Activity& activity);

private:
    void placeButtons();

    ActivityModel* mModel;
};
