#pragma once

#include <set>
#include <string>
#include <vector>

#include <QCoreApplication>

#include "apps/orv-browser/activities/Activity.h"

namespace OrvHost {
struct CatalogReport;
struct ServiceReport;
struct UpdateOutcome;
} // namespace OrvHost

/// Makes activities from the catalogs of an update. Leaves out those for which the service has nothing new.
class UpdateActivities
{
    Q_DECLARE_TR_FUNCTIONS(UpdateActivities)

public:
    /// During the update.
    /// @param installed file names of the catalogs already put into place
    static std::vector<Activity> of(const OrvHost::ServiceReport& service,
                                    const std::set<std::string>& installed);
    /// The failures of a finished update.
    static std::vector<Activity> failuresOf(const OrvHost::UpdateOutcome& outcome);

private:
    static Activity activityOf(const OrvHost::CatalogReport& catalog, const std::set<std::string>& installed);
};
