#include "apps/orv-library/health/StatusCommand.h"

#include "apps/orv-library/Session.h"
#include "apps/orv-library/health/StatusReport.h"

void StatusCommand::declare(CommandSyntax& syntax)
{
    syntax.runs([](Session& session) { return run(session); });
}

ExitStatus StatusCommand::run(Session& session)
{
    session.console().resultSoFar(StatusReport::nothingYet());
    const StatusReport report = StatusReport::of(session.existingHost().root());
    session.console().result(report.document, report.text);
    return report.isSound ? ExitStatus::Done : ExitStatus::Failed;
}
