#include "apps/orv-library/HelpCommand.h"

#include <unistd.h>

#include <QFile>
#include <QProcess>

#include "apps/orv-library/Session.h"
#include "apps/orv-library/console/ManualPage.h"

namespace {

/// Shows the installed page with `man`.
/// @return false if there is none
bool showInstalled(const QString& page)
{
    QProcess search;
    search.start("man", {"-w", page});
    if (!search.waitForFinished() || search.exitStatus() != QProcess::NormalExit || search.exitCode() != 0)
        return false;
    return QProcess::execute("man", {page}) == 0;
}

} // namespace

void HelpCommand::declare(CommandSyntax& syntax)
{
    syntax.argument("COMMAND", mCommand, "The command; without it, the page of the program",
                    CommandSyntax::Presence::Optional);
    syntax.runs([this](Session& session) { return run(session); });
}

ExitStatus HelpCommand::run(Session& session) const
{
    const std::string page = mCommand.empty() ? "orv-library" : "orv-library-" + mCommand;
    QFile source(QString::fromStdString(":/manual/" + page + ".1.scd"));
    if (!source.open(QIODevice::ReadOnly))
        throw UsageError("'" + mCommand + "' is no command");
    const bool isForPeople = !session.options().json && isatty(STDOUT_FILENO) == 1;
    if (isForPeople && showInstalled(QString::fromStdString(page)))
        return ExitStatus::Done;
    const std::string text = ManualPage(source.readAll().toStdString()).text();
    session.console().result({{"page", jsonText(page)}, {"text", jsonText(text)}}, text);
    return ExitStatus::Done;
}
