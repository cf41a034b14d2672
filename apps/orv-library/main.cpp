// The command-line host of the library.
#include <clocale>
#include <cstdio>
#include <exception>

#include <QCoreApplication>

#include "apps/orv-library/CommandLine.h"
#include "apps/orv-library/Session.h"
#include "apps/orv-library/console/Console.h"
#include "apps/orv-library/console/Interrupt.h"

namespace {

int fail(Session& session, const std::string& reason)
{
    session.console().failure(reason);
    return static_cast<int>(ExitStatus::Failed);
}

constexpr const char* kCannotPrint = "cannot write standard output";

int refused(const std::string& usage)
{
    std::fwrite(usage.data(), 1, usage.size(), stderr);
    return static_cast<int>(ExitStatus::WrongUsage);
}

int helped(const std::string& text)
{
    std::fwrite(text.data(), 1, text.size(), stdout);
    if (Console::flush())
        return static_cast<int>(ExitStatus::Done);
    Console::complain(kCannotPrint);
    return static_cast<int>(ExitStatus::Failed);
}

/// Runs the chosen command. All exceptions end here.
int run(const CommandLine& commandLine)
{
    Session session(commandLine.options());
    try {
        const ExitStatus status = commandLine.work()(session);
        return Console::flush() ? static_cast<int>(status) : fail(session, kCannotPrint);
    } catch (const UsageError& error) {
        return refused(commandLine.usage(error.what()));
    } catch (const std::exception& error) {
        return fail(session, error.what());
    }
}

} // namespace

int main(int argc, char** argv)
{
    Interrupt::endsProgram();
    QCoreApplication application(argc, argv);
    // Qt has chosen the user's locale. The program speaks English, so the system's reasons in its messages
    // do, too.
    std::setlocale(LC_MESSAGES, "C");
    const CommandList commands = allCommands();
    CommandLine commandLine(commands);
    switch (commandLine.parse({argv + 1, argv + argc})) {
    case CommandLine::Outcome::Help:
        return helped(commandLine.text());
    case CommandLine::Outcome::WrongUsage:
        return refused(commandLine.text());
    case CommandLine::Outcome::Run:
        break;
    }
    return run(commandLine);
}
