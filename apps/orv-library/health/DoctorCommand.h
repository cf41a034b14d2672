#pragma once

#include <string>

#include "OrvHost/health/Doctor.h"
#include "apps/orv-library/Command.h"
#include "apps/orv-library/update/ServiceOptions.h"

/// `doctor`: finds out why updates fail, and tells what to do.
class DoctorCommand : public Command
{
public:
    std::string name() const override { return "doctor"; }
    std::string summary() const override { return "Find out why updates do not work"; }
    void declare(CommandSyntax& syntax) override;

private:
    ExitStatus run(Session& session);
    std::string completeOptions(Session& session);
    std::string writeReport(const fileString& root, const std::vector<OrvHost::Doctor::Step>& steps) const;

    ServiceOptions mOptions;
    std::string mReport;
};
