#pragma once

#include "apps/orv-library/Command.h"

/// `log show|path|clear`: shows or removes the library's error log.
class LogCommand : public Command
{
public:
    std::string name() const override { return "log"; }
    std::string summary() const override { return "Show or remove the error log"; }
    void declare(CommandSyntax& syntax) override;

private:
    static ExitStatus show(Session& session);
    static ExitStatus path(Session& session);
    static ExitStatus clear(Session& session);
};
