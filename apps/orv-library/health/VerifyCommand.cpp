#include "apps/orv-library/health/VerifyCommand.h"

#include <QJsonArray>

#include "OrvHost/imports/TextureArchive.h"
#include "apps/orv-library/Session.h"

void VerifyCommand::declare(CommandSyntax& syntax)
{
    syntax.flag("--repair", mRepair,
                "Make the next update fetch damaged files again, and keep the sound files\nof damaged "
                "archives that no update brings");
    syntax.runs([this](Session& session) { return run(session); });
}

ExitStatus VerifyCommand::run(Session& session) const
{
    session.console().resultSoFar({{"checked", 0}, {"damaged", QJsonArray()}, {"repaired", QJsonArray()}});
    session.existingHost();
    OrvHost::LibraryHealth health;
    health.checkCoreCatalogs();
    health.checkArchives();

    QJsonArray damaged, repaired;
    for (const auto& damage : health.damages()) {
        damaged.append(jsonText(damage.name));
        Console::complain(damage.name + ": " + damage.text);
        if (mRepair && repair(session, damage))
            repaired.append(jsonText(damage.name));
    }
    const auto checked = static_cast<qint64>(health.checkedCount());
    session.console().result({{"checked", checked}, {"damaged", damaged}, {"repaired", repaired}},
                             "Checked " + std::to_string(checked) + " files, " +
                                 std::to_string(damaged.size()) + " damaged.\n");
    return damaged.size() == repaired.size() ? ExitStatus::Done : ExitStatus::Failed;
}

/// If an update can bring the file back, removes its hash line. For other archives, keeps the sound members.
bool VerifyCommand::repair(Session& session, const OrvHost::LibraryHealth::Damage& damage)
{
    if (damage.isListed) {
        if (!OrvHost::LibraryHealth::forget(damage.name))
            return false;
        session.console().note(damage.name + ": the next update fetches it again");
        return true;
    }
    try {
        const fileString keptAs = OrvHost::TextureArchive::setAsideName(damage.archive);
        const std::vector<std::string> lost =
            OrvHost::TextureArchive::setAside(damage.archive, keptAs, nullptr);
        session.console().note(damage.name + ": has its sound files only; the damaged archive is kept as " +
                               keptAs.toNativeString());
        for (const std::string& name : lost)
            session.console().note(damage.name + ": lost " + name);
        return true;
    } catch (const std::exception& error) {
        Console::complain(damage.name + ": cannot be repaired: " + error.what());
        return false;
    }
}
