#pragma once

#include <string>

#include "OrvHost/update/CheckOutcome.h"
#include "OrvHost/update/LastCheck.h"
#include "apps/orv-library/Command.h"
#include "apps/orv-library/update/ServiceOptions.h"

/// `check`: tells what an update would download.
class CheckCommand : public Command
{
public:
    std::string name() const override { return "check"; }
    std::string summary() const override { return "Show what an update would fetch"; }
    void declare(CommandSyntax& syntax) override;

private:
    ExitStatus run(Session& session);
    ExitStatus ask(Session& session);
    bool isFresh(const OrvHost::LastCheck& last) const;
    ExitStatus print(Session& session, const QJsonObject& document, int exitStatus,
                     const std::string& complaint) const;

    ServiceOptions mOptions;
    bool mExplain = false;
    bool mQuiet = false;
    std::string mMaxAge;
    std::int64_t mMaxAgeHours = -1;
};
