#pragma once

#include <string>

#include "apps/orv-library/Command.h"

/// `publish`: writes the folder for a catalog service on nginx.
class PublishCommand : public Command
{
public:
    std::string name() const override { return "publish"; }
    std::string summary() const override
    {
        return "Write the folder for a catalog service with many clients";
    }
    void declare(CommandSyntax& syntax) override;

private:
    ExitStatus run(Session& session) const;

    std::string mSource;
    std::string mTarget;
};
