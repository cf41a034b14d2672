#pragma once

#include <string>

#include "apps/orv-library/Command.h"

/// `restore NAME [VERSION]`: puts a former version back into place.
class RestoreCommand : public Command
{
public:
    std::string name() const override { return "restore"; }
    std::string summary() const override { return "Restore a former version of a catalog"; }
    void declare(CommandSyntax& syntax) override;

private:
    ExitStatus run(Session& session) const;

    std::string mName;
    std::string mVersion;
};
