#pragma once

#include <string>

#include "apps/orv-library/Command.h"

/// `undo`: takes back the last import.
class UndoCommand : public Command
{
public:
    std::string name() const override { return "undo"; }
    std::string summary() const override { return "Undo the last import"; }
    void declare(CommandSyntax& syntax) override;

private:
    static ExitStatus run(Session& session);
};
