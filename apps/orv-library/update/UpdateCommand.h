#pragma once

#include "OrvHost/update/UpdateOutcome.h"
#include "apps/orv-library/Command.h"
#include "apps/orv-library/update/ServiceOptions.h"

/// `update`: runs one update on a worker thread; the main thread runs the event loop.
class UpdateCommand : public Command
{
public:
    std::string name() const override { return "update"; }
    std::string summary() const override { return "Update the catalogs from the web service"; }
    void declare(CommandSyntax& syntax) override;

private:
    ExitStatus run(Session& session);
    ExitStatus report(Session& session, const OrvHost::UpdateOutcome& outcome,
                      std::size_t formerLogEntries) const;

    ServiceOptions mOptions;
};
