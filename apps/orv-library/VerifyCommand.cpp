#include "apps/orv-library/VerifyCommand.h"

#include <QJsonArray>

#include "OrvHost/health/LibraryHealth.h"
#include "apps/orv-library/Session.h"

void VerifyCommand::declare(CommandSyntax& syntax)
{
    syntax.flag("--repair", mRepair, "Make the next update fetch damaged files again");
    syntax.runs([this](Session& session) { return run(session); });
}

ExitStatus VerifyCommand::run(Session& session) const
{
    session.existingHost();
    OrvHost::LibraryHealth health;
    health.checkCoreCatalogs();
    health.checkArchives();

    QJsonArray damaged, repaired;
    for (const auto& damage : health.damages()) {
        damaged.append(jsonText(damage.name));
        Console::complain(damage.name + ": " + damage.text);
        if (mRepair && damage.isListed && OrvHost::LibraryHealth::forget(damage.name)) {
            repaired.append(jsonText(damage.name));
            session.console().note(damage.name + ": the next update fetches it again");
        }
    }
    const auto checked = static_cast<qint64>(health.checkedCount());
    session.console().result({{"checked", checked}, {"damaged", damaged}, {"repaired", repaired}},
                             "Checked " + std::to_string(checked) + " files, " +
                                 std::to_string(damaged.size()) + " damaged.\n");
    return damaged.size() == repaired.size() ? ExitStatus::Done : ExitStatus::Failed;
}
