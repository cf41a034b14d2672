#pragma once

#include <vector>

#include <QAbstractTableModel>

#include "apps/orv-browser/activities/Activity.h"

/// The activities of the last update and the last imports: one row for each, with its name, its state, and a
/// cell for a button. Lives on the interface thread.
class ActivityModel : public QAbstractTableModel
{
    Q_OBJECT

public:
    enum Column
    {
        kName,
        kState,
        kButton,
        kColumns
    };

    using QAbstractTableModel::QAbstractTableModel;

    const Activity& at(int row) const { return mActivities[static_cast<std::size_t>(row)]; }
    /// Changes the activity with this kind and key. If there is none, adds it at the end.
    void put(const Activity& activity);
    /// Removes all activities of a kind.
    void clear(Activity::Kind kind);
    /// Sets the state of all that are waiting or running.
    void settle(Activity::Kind kind, Activity::State state);

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;

private:
    static QString stateText(const Activity& activity);

    std::vector<Activity> mActivities;
};
