#pragma once

#include "apps/orv-library/Command.h"

/// `status`: tells how old the last successful check is, and lists warnings.
class StatusCommand : public Command
{
public:
    std::string name() const override { return "status"; }
    std::string summary() const override { return "Show whether the library is up to date and sound"; }
    void declare(CommandSyntax& syntax) override;

private:
    static ExitStatus run(Session& session);
};
