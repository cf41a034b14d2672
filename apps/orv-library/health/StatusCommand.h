#pragma once

#include "apps/orv-library/Command.h"

/// `status`: the age of the last good check, and what to look after.
class StatusCommand : public Command
{
public:
    std::string name() const override { return "status"; }
    std::string summary() const override { return "Tell whether the library is up to date and sound"; }
    void declare(CommandSyntax& syntax) override;

private:
    static ExitStatus run(Session& session);
};
