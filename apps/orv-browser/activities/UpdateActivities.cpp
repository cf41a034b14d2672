#include "apps/orv-browser/activities/UpdateActivities.h"

#include <QFileInfo>

#include "OrvHost/update/UpdateOutcome.h"
#include "apps/orv-browser/models/Reasons.h"

namespace {

/// By the name of the installed catalog, which may differ from the one that the service is asked for.
Activity named(const std::string& asked)
{
    Activity activity;
    activity.key = QString::fromStdString(OrvHost::installedName(asked));
    activity.name = QFileInfo(activity.key).completeBaseName();
    return activity;
}

} // namespace

std::vector<Activity> UpdateActivities::of(const OrvHost::ServiceReport& service,
                                           const std::set<std::string>& installed)
{
    std::vector<Activity> activities;
    for (const OrvHost::CatalogReport& catalog : service.catalogs)
        if (catalog.isNew())
            activities.push_back(activityOf(catalog, installed));
    return activities;
}

Activity UpdateActivities::activityOf(const OrvHost::CatalogReport& catalog,
                                      const std::set<std::string>& installed)
{
    Activity activity = named(catalog.asked);
    activity.done = catalog.received;
    activity.whole = catalog.length.value_or(0);
    if (installed.count(OrvHost::installedName(catalog.asked)) != 0) {
        activity.state = Activity::State::Done;
    } else if (catalog.isDownloaded) {
        activity.state = Activity::State::Running;
        activity.step = tr("installing");
        activity.whole = 0;
    } else if (catalog.isDownloadTried && !catalog.reason.empty()) {
        activity.state = Activity::State::Failed;
        activity.reason = Reasons::text(catalog.reason);
    } else if (catalog.received > 0) {
        activity.state = Activity::State::Running;
    }
    return activity;
}

std::vector<Activity> UpdateActivities::failuresOf(const OrvHost::UpdateOutcome& outcome)
{
    std::vector<Activity> activities;
    for (const OrvHost::UpdateOutcome::Failure& failure : outcome.failed) {
        if (!failure.catalog)
            continue;
        Activity activity = named(*failure.catalog);
        activity.state = Activity::State::Failed;
        activity.reason = Reasons::text(failure.reason);
        activities.push_back(activity);
    }
    return activities;
}
