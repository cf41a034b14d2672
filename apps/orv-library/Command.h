#pragma once

#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "apps/orv-library/CommandSyntax.h"

/// The exit statuses of the program.
enum class ExitStatus
{
    Done = 0,
    Failed = 1,
    WrongUsage = 2,
    UpdatesWait = 3, ///< of `check`, and of `update` on a metered connection
    Interrupted = 130
};

/// Thrown if the operation failed. Its text is one line with the reason and the file or address. The program
/// ends with status 1.
class CommandFailure : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

/// Thrown for wrong arguments, before anything has changed. The program ends with status 2 and tells where
/// the help is.
class UsageError : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

/// One subcommand. To add one, write `NameCommand.h` and `NameCommand.cpp` with a class derived from this
/// one, add the source to CMakeLists.txt and one line to `CommandRegistry.cpp`. Its end-to-end test is a file
/// of its own in tests/orv-library.
///
/// `declare` tells which arguments the command takes and which member function does the work:
///
///     void PathsCommand::declare(CommandSyntax& syntax)
///     {
///         syntax.flag("--quiet", mQuiet, "Print nothing");
///         syntax.runs([this](Session& session) { return run(session); });
///     }
///
/// The work gets its host, its output and its progress from the session. It throws `CommandFailure` or
/// `UsageError`, or returns an exit status. Any other exception counts as a failure with its text.
class Command
{
public:
    Command() = default;
    virtual ~Command() = default;
    Command(const Command&) = delete;
    Command& operator=(const Command&) = delete;

    virtual std::string name() const = 0;
    /// One line for the list of commands.
    virtual std::string summary() const = 0;
    /// Called once, before the command line is read. Bound texts must live as long as the command.
    virtual void declare(CommandSyntax& syntax) = 0;
};

using CommandList = std::vector<std::unique_ptr<Command>>;

/// All commands, in the order of the help.
CommandList allCommands();
