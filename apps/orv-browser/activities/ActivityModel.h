#pragma once

#include <vector>

#include <QAbstractTableModel>

#include "apps/orv-browser/activities/Activity.h"

/// The activities of the last update and the last imports: a row each, with its name, how it stands, and
/// room for a button. Lives on the interface thread.
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
    /// Changes the activity of this kind and key, or adds it at the end.
    void put(const Activity& activity);
    /// Forgets all of a kind.
    void clear(Activity::Kind kind);
    /// Ends what waits or runs: what was done so far counts for the rest.
    void settle(Activity::Kind kind, Activity::State state);

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;

private:
    static QString stateText(const Activity& activity);

    std::vector<Activity> mActivities;
};
