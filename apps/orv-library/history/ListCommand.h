#pragma once

#include "apps/orv-library/Command.h"

/// `list`: lists the installed catalogs and archives of referenced files.
class ListCommand : public Command
{
public:
    std::string name() const override { return "list"; }
    std::string summary() const override { return "List the installed catalogs"; }
    void declare(CommandSyntax& syntax) override;

private:
    static ExitStatus run(Session& session);
};
