#include "apps/orv-library/health/VerifyCommand.h"

#include <QJsonArray>

#include "OrvHost/imports/TextureArchive.h"
#include "OrvLibrary/host/FileUtils.h"
#include "OrvLibrary/host/ZipUtils.h"
#include "apps/orv-library/Session.h"
#include "apps/orv-library/console/ConsoleProgress.h"
#include "apps/orv-library/console/Interrupt.h"

namespace {

using OrvHost::LibraryHealth;

/// Less is read and written before a label could be.
constexpr std::int64_t kWorthALabel = 8 << 20;

QJsonObject document(std::size_t checked, const QJsonArray& damaged, const QJsonArray& repaired)
{
    return {{"checked", static_cast<qint64>(checked)}, {"damaged", damaged}, {"repaired", repaired}};
}

/// Keeps the sound members of an archive that no update brings.
/// @throws ZipUtils::Cancelled
bool keepSoundMembers(Session& session, const LibraryHealth::Damage& damage)
{
    std::vector<std::string> lost;
    const fileString keptAs = OrvHost::TextureArchive::setAsideName(damage.archive);
    try {
        ProgressReporter reporter(session.options().progress);
        const auto progress = std::make_shared<ConsoleProgress>(reporter);
        if (FileUtils::fileSize(damage.archive) >= kWorthALabel)
            progress->updateLabels("repairing", {});
        lost = OrvHost::TextureArchive::setAside(damage.archive, keptAs, progress);
    } catch (const ZipUtils::Cancelled&) {
        throw;
    } catch (const std::exception& error) {
        Console::complain(damage.name + ": cannot be repaired: " + error.what());
        return false;
    }
    session.console().note(damage.name + ": has its sound files only; the damaged archive is kept as " +
                           keptAs.toNativeString());
    for (const std::string& name : lost)
        session.console().note(damage.name + ": lost " + name);
    return true;
}

/// If an update can bring the file back, removes its hash line. For other archives, keeps the sound members.
/// @throws ZipUtils::Cancelled
bool repair(Session& session, const LibraryHealth::Damage& damage)
{
    if (Interrupt::requested())
        throw ZipUtils::Cancelled();
    if (!damage.isListed)
        return keepSoundMembers(session, damage);
    if (!LibraryHealth::forget(damage.name))
        return false;
    session.console().note(damage.name + ": the next update fetches it again");
    return true;
}

} // namespace

void VerifyCommand::declare(CommandSyntax& syntax)
{
    syntax.flag("--repair", mRepair,
                "Make the next update fetch damaged files again, and keep the sound files\nof damaged "
                "archives that no update brings");
    syntax.runs([this](Session& session) { return run(session); });
}

ExitStatus VerifyCommand::run(Session& session) const
{
    session.console().resultSoFar(document(0, {}, {}));
    session.existingHost();
    const Interrupt interrupt;
    LibraryHealth health;
    QJsonArray damaged, repaired;
    bool isCancelled = !check(session, health);
    for (const LibraryHealth::Damage& damage : health.damages()) {
        damaged.append(jsonText(damage.name));
        Console::complain(damage.name + ": " + damage.text);
        try {
            if (mRepair && !isCancelled && repair(session, damage))
                repaired.append(jsonText(damage.name));
        } catch (const ZipUtils::Cancelled&) {
            isCancelled = true;
        }
    }
    QJsonObject result = document(health.checkedCount(), damaged, repaired);
    if (isCancelled) {
        result["error"] = "interrupted";
        Console::complain("interrupted");
    }
    session.console().result(result, "Checked " + std::to_string(health.checkedCount()) + " files, " +
                                         std::to_string(damaged.size()) + " damaged.\n");
    if (isCancelled)
        return ExitStatus::Interrupted;
    return damaged.size() == repaired.size() ? ExitStatus::Done : ExitStatus::Failed;
}

/// @return false when the user interrupted it
bool VerifyCommand::check(Session& session, LibraryHealth& health)
{
    ProgressReporter reporter(session.options().progress);
    try {
        health.checkAll(std::make_shared<ConsoleProgress>(reporter));
        return true;
    } catch (const ZipUtils::Cancelled&) {
        return false;
    }
}
