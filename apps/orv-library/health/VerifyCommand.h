#pragma once

#include "OrvHost/health/LibraryHealth.h"
#include "apps/orv-library/Command.h"

/// `verify`: compares core catalogs with their tags and checks the archives.
class VerifyCommand : public Command
{
public:
    std::string name() const override { return "verify"; }
    std::string summary() const override { return "Compare catalogs and archives with their checksums"; }
    void declare(CommandSyntax& syntax) override;

private:
    ExitStatus run(Session& session) const;
    static bool check(Session& session, OrvHost::LibraryHealth& health);

    bool mRepair = false;
};
