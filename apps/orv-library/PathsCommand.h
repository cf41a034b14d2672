#pragma once

#include "apps/orv-library/Command.h"

/// `paths`: lists all folders and files of the library.
class PathsCommand : public Command
{
public:
    std::string name() const override { return "paths"; }
    std::string summary() const override { return "Print each well-known folder and file"; }
    void declare(CommandSyntax& syntax) override;

private:
    ExitStatus run(Session& session) const;

    bool mCreate = false;
};
