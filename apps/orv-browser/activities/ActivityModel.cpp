#include "apps/orv-browser/activities/ActivityModel.h"

#include <algorithm>

#include <QApplication>
#include <QStyle>

#include "apps/orv-browser/models/DataSize.h"

namespace {

QStyle::StandardPixmap iconOf(Activity::State state)
{
    switch (state) {
    case Activity::State::Waiting:
        break;
    case Activity::State::Running:
        return QStyle::SP_ArrowDown;
    case Activity::State::Done:
        return QStyle::SP_DialogApplyButton;
    case Activity::State::Failed:
        return QStyle::SP_MessageBoxCritical;
    case Activity::State::Cancelled:
        return QStyle::SP_DialogCancelButton;
    }
    return QStyle::SP_BrowserReload;
}

} // namespace

void ActivityModel::put(const Activity& activity)
{
    const auto found = std::find_if(mActivities.begin(), mActivities.end(), [&](const Activity& other) {
        return other.kind == activity.kind && other.key == activity.key;
    });
    const int row = static_cast<int>(found - mActivities.begin());
    if (found != mActivities.end()) {
        *found = activity;
        Q_EMIT dataChanged(index(row, 0), index(row, kColumns - 1));
        return;
    }
    beginInsertRows({}, row, row);
    mActivities.push_back(activity);
    endInsertRows();
}

void ActivityModel::clear(Activity::Kind kind)
{
    beginResetModel();
    mActivities.erase(std::remove_if(mActivities.begin(), mActivities.end(),
                                     [kind](const Activity& activity) { return activity.kind == kind; }),
                      mActivities.end());
    endResetModel();
}

void ActivityModel::settle(Activity::Kind kind, Activity::State state)
{
    for (Activity activity : std::vector<Activity>(mActivities)) {
        const bool isOpen =
            activity.state == Activity::State::Waiting || activity.state == Activity::State::Running;
        if (activity.kind != kind || !isOpen)
            continue;
        activity.state = state;
        put(activity);
    }
}

int ActivityModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(mActivities.size());
}

int ActivityModel::columnCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : kColumns;
}

QVariant ActivityModel::data(const QModelIndex& index, int role) const
{
    const Activity& activity = at(index.row());
    const bool isText = role == Qt::DisplayRole || role == Qt::ToolTipRole;
    if (isText && index.column() == kName)
        return activity.name;
    if (isText && index.column() == kState)
        return stateText(activity);
    if (role == Qt::DecorationRole && index.column() == kName)
        return QApplication::style()->standardIcon(iconOf(activity.state));
    return {};
}

QString ActivityModel::stateText(const Activity& activity)
{
    switch (activity.state) {
    case Activity::State::Waiting:
        return tr("waiting");
    case Activity::State::Running:
        break;
    case Activity::State::Done:
        return activity.kind == Activity::Kind::Import ? tr("imported") : tr("installed");
    case Activity::State::Failed:
        return tr("failed: %1").arg(activity.reason);
    case Activity::State::Cancelled:
        return tr("cancelled");
    }
    QStringList parts;
    if (!activity.step.isEmpty())
        parts << activity.step;
    if (activity.whole > 0)
        parts << DataSize::part(activity.done, activity.whole);
    return parts.join(tr(", "));
}
