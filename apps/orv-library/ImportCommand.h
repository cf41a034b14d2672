#pragma once

#include <string>

#include "apps/orv-library/Command.h"

/// `import SOURCE [--proprietary]`: a packed library becomes one of the user's.
class ImportCommand : public Command
{
public:
    std::string name() const override { return "import"; }
    std::string summary() const override { return "Import a library archive"; }
    void declare(CommandSyntax& syntax) override;

private:
    ExitStatus run(Session& session) const;

    std::string mSource;
    bool mProprietary = false;
};
