#pragma once

#include <cstdint>

#include "apps/orv-library/Command.h"

/// `runs`: lists the last updates and checks.
class RunsCommand : public Command
{
public:
    std::string name() const override { return "runs"; }
    std::string summary() const override { return "List the last updates and checks"; }
    void declare(CommandSyntax& syntax) override;

private:
    static ExitStatus list(Session& session);
    ExitStatus show(Session& session) const;

    std::int64_t mNumber = 0;
};
