#pragma once

#include "apps/orv-library/Command.h"

/// `help`: shows the manual page of a command, even if no manual pages are installed.
class HelpCommand : public Command
{
public:
    std::string name() const override { return "help"; }
    std::string summary() const override { return "Show the manual page of a command"; }
    void declare(CommandSyntax& syntax) override;

private:
    ExitStatus run(Session& session) const;

    std::string mCommand;
};
