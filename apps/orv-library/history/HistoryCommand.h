#pragma once

#include <string>

#include "apps/orv-library/Command.h"

/// `history NAME`: lists the former versions of a catalog.
class HistoryCommand : public Command
{
public:
    std::string name() const override { return "history"; }
    std::string summary() const override { return "List the former versions of a catalog"; }
    void declare(CommandSyntax& syntax) override;

private:
    ExitStatus run(Session& session) const;

    std::string mName;
};
