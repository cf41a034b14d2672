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

/// How the catalogs of an update stand, as activities. Catalogs that the service has nothing new of are no
/// activities.
class UpdateActivities
{
    Q_DECLARE_TR_FUNCTIONS(UpdateActivities)

public:
    /// While the update goes on.
    /// @param installed file names of the catalogs that were put in place
    static std::vector<Activity> of(const OrvHost::ServiceReport& service,
                                    const std::set<std::string>& installed);
    /// The failures of an update that has ended.
    static std::vector<Activity> failuresOf(const OrvHost::UpdateOutcome& outcome);

private:
    static Activity activityOf(const OrvHost::CatalogReport& catalog, const std::set<std::string>& installed);
};
