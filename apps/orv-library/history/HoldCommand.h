#pragma once

#include <string>

#include "apps/orv-library/Command.h"

/// `hold NAME`: keeps a catalog at its version.
class HoldCommand : public Command
{
public:
    std::string name() const override { return "hold"; }
    std::string summary() const override { return "Keep a catalog at its version"; }
    void declare(CommandSyntax& syntax) override;

private:
    ExitStatus run(Session& session) const;

    std::string mName;
};

/// `release NAME`: lets updates replace a held catalog again.
class ReleaseCommand : public Command
{
public:
    std::string name() const override { return "release"; }
    std::string summary() const override { return "Let updates replace a held catalog again"; }
    void declare(CommandSyntax& syntax) override;

private:
    ExitStatus run(Session& session) const;

    std::string mName;
};
