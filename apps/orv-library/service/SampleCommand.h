#pragma once

#include <string>

#include "apps/orv-library/Command.h"

/// `sample`: writes a content folder to try the programs with.
class SampleCommand : public Command
{
public:
    std::string name() const override { return "sample"; }
    std::string summary() const override { return "Write a content folder for a first run"; }
    void declare(CommandSyntax& syntax) override;

private:
    ExitStatus run(Session& session) const;

    std::string mFolder;
};
