#pragma once

#include <string>

#include "apps/orv-library/Command.h"

/// `info NAME`: shows one installed catalog.
class InfoCommand : public Command
{
public:
    std::string name() const override { return "info"; }
    std::string summary() const override { return "Show one installed catalog"; }
    void declare(CommandSyntax& syntax) override;

private:
    ExitStatus run(Session& session) const;

    std::string mName;
};
